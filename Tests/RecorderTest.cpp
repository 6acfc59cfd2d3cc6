#include "Tests/Exchanges.h"

#include "Platform/NSNotificationCenter.h"

#include <QtTest/QTest>

#include <random>

using namespace Quorvix;

using namespace Exchanges;
using namespace Qt::StringLiterals;

namespace {

QXTraceList::CellPtr cell(int number)
{
    return std::make_shared<const QXTraceList::Cell>(
        QXTraceList::Cell{QXRequestTrace(QString::number(number), URLRequest()), {}});
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
    void runningExchangesShowWhatHasArrived();
    void finders();
    void budgetRemovesTheOldestBodies_data();
    void budgetRemovesTheOldestBodies();
    void budgetLeavesSnapshotsAlone();
    void loopsSurviveChangesOfTheRecorder();
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
    const QXRequestTrace empty(u"1"_s, bare);
    QVERIFY(!empty.url && !empty.method && !empty.headers && !empty.body);
    QVERIFY(!empty.response && !empty.error && !empty.duration);

    URLRequest full = makeRequest(u"http://host/a"_s, u"POST"_s);
    full.setValue(u"v"_s, u"X-Name"_s);
    full.httpBody = ""_ba;
    const QXRequestTrace trace(u"2"_s, full);
    QCOMPARE(trace.method, u"POST"_s);
    QCOMPARE(trace.headers->value(u"X-Name"_s), u"v"_s);
    QVERIFY(trace.body && trace.body->isEmpty());
}

void RecorderTest::tracesAreComparedByIdentityAlone()
{
    QXRequestTrace pending(u"1"_s, makeRequest(u"http://host/a"_s));
    QXRequestTrace completed = pending;
    completed.response = QXResponseTrace(*makeResponse(200), {});
    QVERIFY(pending == completed);
    QCOMPARE(qHash(pending), qHash(completed));
}

void RecorderTest::responseHeadersAreAllTextOrAbsent()
{
    const auto headers = [](NSHeaderFields fields) {
        return QXResponseTrace(*makeResponse(200, std::move(fields)), {}).headers;
    };
    const NSHeaderFields text{{u"ETag"_s, u"x"_s}, {u"etag"_s, u"y"_s}};
    QCOMPARE(headers(text)->size(), 2);
    QVERIFY(!headers({{u"A"_s, u"x"_s}, {u"B"_s, qint64(1)}}));
    QVERIFY(!headers({{qint64(1), u"x"_s}}));
    QVERIFY(headers({})->isEmpty());
}

void RecorderTest::newestComesFirstAndEveryChangeIsPosted()
{
    for (const auto *id : {"A", "B", "C"})
        m_recorder.record(QString::fromLatin1(id), makeRequest(u"http://host/"_s));
    QCOMPARE(ids(m_recorder.requests()).join(QString()), u"CBA"_s);
    QCOMPARE(m_posts, 3);
    m_recorder.complete(u"unknown"_s, makeResponse(200), {}, {});
    QVERIFY(!m_recorder.requests()[0].duration);
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
    m_recorder.record(u"A"_s, makeRequest(u"http://host/"_s));

    m_recorder.complete(u"A"_s, std::make_shared<const NSURLResponse>(std::nullopt), body, {});
    QXRequestTrace trace = m_recorder.requests()[0];
    QVERIFY(trace.duration && *trace.duration >= 0);
    QVERIFY(!trace.response && !trace.error);

    m_recorder.complete(u"A"_s, nullptr, {}, lost);
    trace = m_recorder.requests()[0];
    QCOMPARE(trace.error->domain, NSURLErrorDomain);
    QCOMPARE(trace.error->code, -1005);
    QVERIFY(!trace.error->localizedDescription.isEmpty());

    m_recorder.complete(u"A"_s, makeResponse(201), body, {});
    trace = m_recorder.requests()[0];
    QCOMPARE(trace.response->statusCode, 201);
    QVERIFY(trace.error);
    QCOMPARE(trace.response->body->constData(), body.constData()); // the same bytes, not a copy
    QCOMPARE(m_posts, 4);
}

void RecorderTest::runningExchangesShowWhatHasArrived()
{
    int asked = 0;
    const auto askable = [&](const QString &id) {
        m_recorder.record(id, makeRequest(u"http://host/"_s));
        m_recorder.setRefresher(id, [&asked] { ++asked; });
    };
    askable(u"A"_s);
    QVERIFY(m_recorder.refresh(u"A"_s) && !m_recorder.refresh(u"B"_s));
    QCOMPARE(asked, 1);

    m_posts = 0;
    m_recorder.progress(u"A"_s, makeResponse(206), "half");
    m_recorder.progress(u"A"_s, std::make_shared<const NSURLResponse>(std::nullopt), "not HTTP");
    m_recorder.progress(u"B"_s, makeResponse(200), {});
    QCOMPARE(m_posts, 1);
    QXRequestTrace trace = m_recorder.requests()[0];
    QVERIFY(!trace.duration && !trace.error);
    QCOMPARE(trace.response->statusCode, 206);
    QCOMPARE(trace.response->body, "half");

    m_recorder.complete(u"A"_s, nullptr, {}, makeURLError(NSURLErrorTimedOut));
    m_recorder.progress(u"A"_s, makeResponse(200), "late");
    m_recorder.setRefresher(u"A"_s, [&asked] { ++asked; });
    QVERIFY(!m_recorder.requests()[0].response && !m_recorder.refresh(u"A"_s));
    askable(u"B"_s);
    m_recorder.clear();
    QVERIFY(!m_recorder.refresh(u"B"_s));
    QCOMPARE(asked, 1);

    askable(u"C"_s);
    m_recorder.setRefresher(u"C"_s, [&, token = std::make_shared<int>(7)] {
        m_recorder.complete(u"C"_s, makeResponse(200), {}, {});
        asked = *token; // still exists while it runs
    });
    QVERIFY(m_recorder.refresh(u"C"_s) && m_recorder.requests()[0].duration);
    QCOMPARE(asked, 7);
}

void RecorderTest::finders()
{
    m_recorder.record(u"A"_s, makeRequest(u"http://host/users.json?users=1"_s));
    m_recorder.record(u"B"_s, makeRequest(u"http://host/a.tar.gz"_s, u"get"_s));
    m_recorder.record(u"C"_s, makeRequest(u"http://host/a.json/b"_s, std::nullopt));
    m_recorder.record(u"D"_s, makeRequest(QString()));
    m_recorder.complete(u"A"_s, makeResponse(404), {}, {});
    m_recorder.complete(u"B"_s, nullptr, {}, makeURLError(NSURLErrorTimedOut));
    const auto byPath = [this](const QString &path) {
        return ids(m_recorder.findRequestsByPath(path)).join(QString());
    };
    QCOMPARE(byPath(u"so"_s), u"A"_s); // part of the extension
    QCOMPARE(byPath(u"JSON"_s), QString());
    QCOMPARE(byPath(u"users"_s), QString()); // the rest of the path is not searched
    QCOMPARE(byPath(u"tar"_s), QString());   // the last dot counts
    QCOMPARE(byPath(QString()), u"CBA"_s);   // in every extension
    QCOMPARE(ids(m_recorder.findRequestsByMethod(u"GET"_s)), QStringList({u"D"_s, u"A"_s}));
    QCOMPARE(ids(m_recorder.findRequestsByStatusCode(404)), QStringList(u"A"_s));
    QVERIFY(m_recorder.findRequestsByStatusCode(0).isEmpty());
}

/// Each step is a letter and a size: "A3" records A with a request of 3 bytes, "a3" completes it with a
/// response of 3 bytes, "p3" reports 3 bytes so far, "m3" amends the newest request, "=9" sets the budget.
void RecorderTest::budgetRemovesTheOldestBodies_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("bodies");
    QTest::newRow("no budget") << u"A900 a900"_s << u"A 900 900"_s;
    QTest::newRow("all fit") << u"=10 A5 a5"_s << u"A 5 5"_s;
    QTest::newRow("the oldest go first") << u"=10 A4 a4 B4 b4"_s << u"A -4 -4, B 4 4"_s;
    QTest::newRow("a late response is young") << u"=10 A2 B6 a6"_s << u"A -2 6, B -6 none"_s;
    QTest::newRow("alone too large") << u"=10 A4 a11 B11"_s << u"A 4 -11, B -11 none"_s;
    QTest::newRow("nothing is kept") << u"=0 A0 a1"_s << u"A 0 -1"_s;
    QTest::newRow("negative") << u"=-5 A1"_s << u"A -1 none"_s;
    QTest::newRow("set later") << u"A4 a4 B4 b99 =10"_s << u"A -4 4, B 4 -99"_s;
    QTest::newRow("lowered") << u"=20 A4 a4 B4 b4 =8"_s << u"A -4 -4, B 4 4"_s;
    QTest::newRow("removed") << u"=1 = A4 a4"_s << u"A 4 4"_s;
    QTest::newRow("progress is replaced") << u"=10 A0 p4 p8 a9"_s << u"A 0 9"_s;
    QTest::newRow("progress outgrows") << u"=10 A4 p8 p11"_s << u"A -4 -11"_s;
    QTest::newRow("amended") << u"=10 A4 m8 m3"_s << u"A 3 none"_s;
    QTest::newRow("removed, then amended") << u"=10 A4 B9 a5"_s << u"A -4 5, B -9 none"_s;
}

void RecorderTest::budgetRemovesTheOldestBodies()
{
    QFETCH(QString, steps);
    m_recorder.setBodyBudget(std::nullopt);
    QVERIFY(!m_recorder.bodyBudget());
    QString newest;
    for (const QString &step : steps.split(u' ')) {
        const auto size = qsizetype(step.mid(1).toLongLong());
        const QByteArray body(std::max<qsizetype>(size, 0), 'x');
        if (step[0] == u'=') {
            m_recorder.setBodyBudget(step.size() > 1 ? std::optional(size) : std::nullopt);
        } else if (step[0].isUpper() || step[0] == u'm') {
            URLRequest request = makeRequest(u"http://host/"_s);
            request.httpBody = body;
            if (step[0] == u'm') {
                m_recorder.amend(newest, request);
            } else {
                newest = step.first(1);
                m_recorder.record(newest, request);
            }
        } else if (step[0] == u'p') {
            m_recorder.progress(newest, makeResponse(200), body);
        } else {
            m_recorder.complete(step.first(1).toUpper(), makeResponse(200), body, {});
        }
    }
    const auto text = [](const auto &half) {
        return half.body                ? QString::number(half.body->size())
               : half.discardedBodySize ? QString::number(-*half.discardedBodySize)
                                        : u"none"_s;
    };
    QStringList bodies;
    for (const QXRequestTrace &trace : m_recorder.requests())
        bodies.prepend(trace.id + u' ' + text(trace) + u' ' +
                       (trace.response ? text(*trace.response) : u"none"_s));
    QTEST(bodies.join(u", "_s), "bodies");

    // Positions begin anew.
    m_recorder.clear();
    m_recorder.setBodyBudget(4);
    m_recorder.record(u"A"_s, makeRequest(u"http://host/"_s));
    m_recorder.complete(u"A"_s, makeResponse(200), "four", {});
    QCOMPARE(m_recorder.requests()[0].response->body, "four"_ba);
    m_recorder.setBodyBudget(std::nullopt);
}

void RecorderTest::budgetLeavesSnapshotsAlone()
{
    m_recorder.record(u"A"_s, makeRequest(u"http://host/"_s));
    m_recorder.complete(u"A"_s, makeResponse(200), "body", {});
    const QXTraceList snapshot = m_recorder.requests();
    m_posts = 0;
    m_recorder.setBodyBudget(3);
    m_recorder.setBodyBudget(2); // changes nothing
    QCOMPARE(m_posts, 1);
    QCOMPARE(snapshot[0].response->body, "body"_ba);
    const QXResponseTrace removed = m_recorder.requests()[0].response.value();
    QCOMPARE(removed.discardedBodySize, 4);
    QVERIFY(removed != *snapshot[0].response);
    m_recorder.setBodyBudget(std::nullopt);
    QVERIFY(!m_recorder.requests()[0].response->body);
}

void RecorderTest::loopsSurviveChangesOfTheRecorder()
{
    const auto fill = [this] {
        m_recorder.clear();
        for (int i = 0; i < 100; ++i)
            m_recorder.record(QString::number(i), makeRequest(u"http://host/"_s));
    };
    fill();
    const auto &snapshot = m_recorder.requests();
    const auto &newest = m_recorder.requests()[0];
    int seen = 0;
    for (const QXRequestTrace &trace : m_recorder.requests()) {
        QCOMPARE(trace.id, QString::number(99 - seen++));
        seen == 50 ? m_recorder.clear() : m_recorder.record(u"late"_s, makeRequest(u"http://host/"_s));
    }
    QCOMPARE(seen, 100);
    QCOMPARE(snapshot.size(), 100);
    QCOMPARE(newest.id, u"99"_s);
    QCOMPARE(m_recorder.requests().size(), 50);

    fill();
    const auto found = m_recorder.findRequests([this](const QXRequestTrace &trace) {
        m_recorder.clear();
        return trace.id.endsWith(u'7');
    });
    QCOMPARE(found.size(), 10);
    QVERIFY(m_recorder.requests().isEmpty());
}

void RecorderTest::snapshotsStayAsTheyWere()
{
    // Compares with a plain list, with sizes at which the tree grows, while snapshots exist.
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
    QCOMPARE(list.indexOf(u"none"_s), -1);
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
