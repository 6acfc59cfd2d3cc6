#include "Quorvix/QXRequestRecorder.h"

#include "Platform/NSNotificationCenter.h"

#include <QtTest/QTest>

#include <random>

namespace {

URLRequest request(const QString &url, const std::optional<QString> &method = QStringLiteral("GET"))
{
    URLRequest made{QUrl(url)};
    made.httpMethod = method;
    return made;
}

NSURLResponsePtr httpResponse(qint64 statusCode, NSHeaderFields fields = {})
{
    return NSHTTPURLResponse::create(QUrl(QStringLiteral("http://host/")), statusCode,
                                     QStringLiteral("HTTP/1.1"), std::move(fields));
}

QStringList ids(const QXTraceList &list)
{
    QStringList found;
    for (const QXRequestTrace &trace : list)
        found.append(trace.id);
    return found;
}

QStringList ids(const QList<QXRequestTrace> &list)
{
    QStringList found;
    for (const QXRequestTrace &trace : list)
        found.append(trace.id);
    return found;
}

QXTraceList::CellPtr cell(int number)
{
    return std::make_shared<const QXTraceList::Cell>(
        QXTraceList::Cell{QXRequestTrace(QString::number(number), URLRequest()), {}, {}});
}

} // namespace

class RecorderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void traceKeepsAbsenceApartFromEmptiness();
    void tracesAreComparedByIdentityAlone();
    void responseHeadersAreAllTextOrAbsent();
    void newestComesFirstAndEveryChangeIsPosted();
    void completionFillsInWhatItWasGiven();
    void completionOfAnUnknownTraceIsSilent();
    void findersByPath_data();
    void findersByPath();
    void findersByMethodAndStatus();
    void snapshotsStayAsTheyWere();
    void differencesAreFoundBetweenRelatedLists();

private:
    QXRequestRecorder m_recorder;
    int m_posts = 0;
    NSNotificationObserver m_observer =
        NSNotificationCenter::defaultCenter().addObserver(QuorvixRequestsChanged, [this] { ++m_posts; });
};

void RecorderTest::init()
{
    m_recorder.clear();
    m_posts = 0;
}

void RecorderTest::traceKeepsAbsenceApartFromEmptiness()
{
    URLRequest bare;
    bare.httpMethod.reset();
    const QXRequestTrace empty(QStringLiteral("1"), bare);
    QVERIFY(!empty.url && !empty.method && !empty.headers && !empty.body);
    QVERIFY(!empty.response && !empty.error && !empty.duration);

    URLRequest full = request(QStringLiteral("http://host/a"), QStringLiteral("POST"));
    full.setValue(QStringLiteral("v"), QStringLiteral("X-Name"));
    full.httpBody = QByteArray("");
    const QXRequestTrace trace(QStringLiteral("2"), full);
    QCOMPARE(trace.method, QStringLiteral("POST"));
    QCOMPARE(trace.headers->value(QStringLiteral("X-Name")), QStringLiteral("v"));
    QVERIFY(trace.body && trace.body->isEmpty());
}

void RecorderTest::tracesAreComparedByIdentityAlone()
{
    QXRequestTrace pending(QStringLiteral("1"), request(QStringLiteral("http://host/a")));
    QXRequestTrace completed = pending;
    completed.response = QXResponseTrace(static_cast<const NSHTTPURLResponse &>(*httpResponse(200)), {});
    QVERIFY(pending == completed);
    QCOMPARE(qHash(pending), qHash(completed));

    QXResponseTrace other = *completed.response;
    QVERIFY(other == *completed.response);
    QCOMPARE(qHash(other), qHash(*completed.response));
    other.body = QByteArray("");
    QVERIFY(other != *completed.response);
    QVERIFY(qHash(other) != qHash(*completed.response));
}

void RecorderTest::responseHeadersAreAllTextOrAbsent()
{
    const auto headers = [](NSHeaderFields fields) {
        return QXResponseTrace(static_cast<const NSHTTPURLResponse &>(*httpResponse(200, std::move(fields))),
                               {})
            .headers;
    };
    const NSHeaderFields text{{QStringLiteral("ETag"), QStringLiteral("x")},
                              {QStringLiteral("etag"), QStringLiteral("y")}};
    QCOMPARE(headers(text)->size(), 2);
    QVERIFY(!headers({{QStringLiteral("A"), QStringLiteral("x")}, {QStringLiteral("B"), qint64(1)}}));
    QVERIFY(!headers({{qint64(1), QStringLiteral("x")}}));
    QVERIFY(headers({})->isEmpty());
}

void RecorderTest::newestComesFirstAndEveryChangeIsPosted()
{
    for (const auto *id : {"A", "B", "C"})
        m_recorder.record(QString::fromLatin1(id), request(QStringLiteral("http://host/")));
    QCOMPARE(ids(m_recorder.requests()).join(QString()), QStringLiteral("CBA"));
    QCOMPARE(m_posts, 3);
    m_recorder.clear();
    m_recorder.clear();
    QVERIFY(m_recorder.requests().isEmpty());
    QCOMPARE(m_posts, 5);
}

void RecorderTest::completionFillsInWhatItWasGiven()
{
    const NSError lost = makeURLError(NSURLErrorNetworkConnectionLost);
    const QByteArray body("body");
    m_recorder.record(QStringLiteral("A"), request(QStringLiteral("http://host/")));

    m_recorder.complete(QStringLiteral("A"), std::make_shared<const NSURLResponse>(std::nullopt), body, {});
    QXRequestTrace trace = m_recorder.requests()[0];
    QVERIFY(trace.duration && *trace.duration >= 0);
    QVERIFY(!trace.response && !trace.error);

    m_recorder.complete(QStringLiteral("A"), nullptr, {}, lost);
    trace = m_recorder.requests()[0];
    QCOMPARE(trace.error->domain, NSURLErrorDomain);
    QCOMPARE(trace.error->code, -1005);
    QVERIFY(!trace.error->localizedDescription.isEmpty());

    m_recorder.complete(QStringLiteral("A"), httpResponse(201), body, {});
    trace = m_recorder.requests()[0];
    QCOMPARE(trace.response->statusCode, 201);
    QVERIFY(trace.error);
    QCOMPARE(trace.response->body->constData(), body.constData()); // the same bytes, not a copy
    QCOMPARE(m_posts, 4);
}

void RecorderTest::completionOfAnUnknownTraceIsSilent()
{
    m_recorder.record(QStringLiteral("A"), request(QStringLiteral("http://host/")));
    m_recorder.complete(QStringLiteral("B"), httpResponse(200), {}, {});
    QVERIFY(!m_recorder.requests()[0].duration);
    QCOMPARE(m_posts, 1);
}

void RecorderTest::findersByPath_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("found");
    const auto users = QStringLiteral("http://host/users.json?users=1");
    QTest::newRow("extension") << users << QStringLiteral("json") << true;
    QTest::newRow("part of the extension") << users << QStringLiteral("so") << true;
    QTest::newRow("case matters") << users << QStringLiteral("JSON") << false;
    QTest::newRow("the path is not searched") << users << QStringLiteral("users") << false;
    QTest::newRow("last dot counts") << QStringLiteral("http://host/a.tar.gz") << QStringLiteral("tar")
                                     << false;
    QTest::newRow("dot in a folder") << QStringLiteral("http://host/a.json/b") << QStringLiteral("json")
                                     << false;
    QTest::newRow("empty text is in every extension") << QStringLiteral("http://host/") << QString() << true;
}

void RecorderTest::findersByPath()
{
    QFETCH(const QString, url);
    QFETCH(const QString, path);
    QFETCH(const bool, found);
    m_recorder.record(QStringLiteral("A"), request(url));
    m_recorder.record(QStringLiteral("without URL"), URLRequest());
    QCOMPARE(ids(m_recorder.findRequestsByPath(path)),
             found ? QStringList(QStringLiteral("A")) : QStringList());
}

void RecorderTest::findersByMethodAndStatus()
{
    m_recorder.record(QStringLiteral("A"), request(QStringLiteral("http://host/1")));
    m_recorder.record(QStringLiteral("B"), request(QStringLiteral("http://host/2"), QStringLiteral("get")));
    m_recorder.record(QStringLiteral("C"), request(QStringLiteral("http://host/3"), std::nullopt));
    m_recorder.complete(QStringLiteral("A"), httpResponse(404), {}, {});
    m_recorder.complete(QStringLiteral("B"), nullptr, {}, makeURLError(NSURLErrorTimedOut));
    QCOMPARE(ids(m_recorder.findRequestsByMethod(QStringLiteral("GET"))), QStringList(QStringLiteral("A")));
    QCOMPARE(ids(m_recorder.findRequestsByStatusCode(404)), QStringList(QStringLiteral("A")));
    QCOMPARE(ids(m_recorder.findRequestsByStatusCode(0)), QStringList());
    QCOMPARE(ids(m_recorder.findRequests([](const auto &trace) { return !trace.response; })).join(QString()),
             QStringLiteral("CB"));
}

void RecorderTest::snapshotsStayAsTheyWere()
{
    // Against a plain list, across the sizes at which the tree grows, with snapshots alive all the time.
    std::mt19937 random(7);
    QXTraceList list;
    std::vector<int> expected;
    std::vector<std::pair<QXTraceList, std::vector<int>>> snapshots;
    for (int step = 0; step < 3000; ++step) {
        if (expected.empty() || random() % 4 != 0) {
            list.prepend(cell(step));
            expected.insert(expected.begin(), step);
        } else {
            const auto index = std::size_t(random() % expected.size());
            list.replace(qsizetype(index), cell(step));
            expected[index] = step;
        }
        if (step % 97 == 0)
            snapshots.emplace_back(list, expected);
    }
    snapshots.emplace_back(list, expected);
    for (const auto &[snapshot, numbers] : snapshots) {
        QCOMPARE(snapshot.size(), qsizetype(numbers.size()));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            QCOMPARE(snapshot[qsizetype(i)].id, QString::number(numbers[i]));
    }
    QCOMPARE(list.indexOf(QString::number(expected.back())), list.size() - 1);
    QCOMPARE(list.indexOf(QStringLiteral("none")), -1);
}

void RecorderTest::differencesAreFoundBetweenRelatedLists()
{
    for (const int size : {1, 31, 32, 33, 1024, 1025, 3000}) {
        QXTraceList before;
        for (int i = 0; i < size; ++i)
            before.prepend(cell(i));
        QXTraceList after = before;
        for (int i = 0; i < 40; ++i)
            after.prepend(cell(size + i));
        QList<qsizetype> expected{0};
        after.replace(after.size() - 1, cell(-1)); // the oldest
        if (size > 20) {
            after.replace(after.size() - 1 - 17, cell(-2));
            expected.append(17);
        }
        QList<qsizetype> found;
        before.visitDifferences(after, [&](qsizetype position) { found.append(position); });
        QCOMPARE(found, expected);
        found.clear();
        after.visitDifferences(before, [&](qsizetype position) { found.append(position); });
        QCOMPARE(found, expected);
    }
}

QTEST_GUILESS_MAIN(RecorderTest)
#include "RecorderTest.moc"
