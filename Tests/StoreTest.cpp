#include "Examples/DemoServer.h"

#include "Tests/Exchanges.h"
#include "Tests/NetworkKit.h"

#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXSessionHook.h"

#include "Platform/NSURLSession.h"

#include <QtCore/QTemporaryFile>
#include <QtNetwork/QNetworkReply>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <atomic>
#include <random>
#include <thread>

using namespace Quorvix;

using namespace Exchanges;
using namespace Qt::StringLiterals;

namespace {

/// A body whose buffer has grown to twice its size.
QByteArray looseBody(qsizetype size)
{
    QByteArray body(size, 'x');
    body.reserve(2 * size);
    return body;
}

bool isTight(const std::optional<QByteArray> &body)
{
    return body && body->capacity() <= body->size() * 1.02 + 32;
}

} // namespace

/// What the store does with memory: what it shares, what it changes in place, and how much it keeps.
class StoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_recorder.clear(); }
    void headersAreKeptAsTheyAre_data();
    void headersAreKeptAsTheyAre();
    void snapshotsOfTheRecorderStayAsTheyWere();
    void changesAreMadeInPlace();
    void snapshotsMayEndInAnotherThread();
    void looseBodiesBecomeTight_data();
    void looseBodiesBecomeTight();
    void looseBodiesWaitForSnapshots();
    void capturedBodiesAreTight_data();
    void capturedBodiesAreTight();

private:
    void waitForALook();

    QXRequestRecorder m_recorder;
    DemoServer m_server;
};

void StoreTest::initTestCase()
{
    QXSessionHook::install();
    QVERIFY(m_server.start());
}

void StoreTest::headersAreKeptAsTheyAre_data()
{
    QTest::addColumn<HTTPHeaderFields>("fields");
    QTest::newRow("none") << HTTPHeaderFields();
    QTest::newRow("known and unknown names")
        << HTTPHeaderFields{{u"Content-Type"_s, u"a/b"_s}, {u"X-Own"_s, u"1"_s}, {u"ETag"_s, u"x"_s}};
    QTest::newRow("case of names") << HTTPHeaderFields{
        {u"etag"_s, u"1"_s}, {u"ETAG"_s, u"2"_s}, {u"ETag"_s, u"3"_s}};
    QTest::newRow("empty texts") << HTTPHeaderFields{
        {QString(), u"v"_s}, {u"Age"_s, QString()}, {u"Z"_s, u""_s}};
    QTest::newRow("Latin-1") << HTTPHeaderFields{{u"X-\u00e4"_s, u"\u00ff\u0000"_s},
                                                 {u"Date"_s, u"\u00e9"_s}};
    QTest::newRow("beyond Latin-1") << HTTPHeaderFields{{u"Date"_s, u"\u4e2d\U0001F600"_s},
                                                        {u"X-\u0100"_s, u"a"_s}};
    for (const int size : {127, 128, 16'383, 16'384, 70'000})
        QTest::addRow("%d characters", size)
            << HTTPHeaderFields{{u"Cookie"_s, QString(size, u'x')}, {QString(size, u'y'), u"z"_s}};
}

void StoreTest::headersAreKeptAsTheyAre()
{
    QFETCH(const HTTPHeaderFields, fields);
    const StoredHeaderFields stored = fields;
    QCOMPARE(stored.size(), fields.size());
    QCOMPARE(stored.toMap(), fields);
    QCOMPARE(HTTPHeaderFields(stored), fields);
    QVERIFY(stored == fields && stored == StoredHeaderFields(fields));
    StoredHeaderFields other = stored;
    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        QCOMPARE(stored.exactValue(it.key()), it.value());
        QCOMPARE(headerValue(std::optional(stored), it.key().toUpper()),
                 headerValue(std::optional(fields), it.key().toUpper()));
        QCOMPARE(*stored.constFind(it.key()), it.value());
        other.insert(it.key(), it.value() + u'x');
        QVERIFY(other != stored && other.contains(it.key()));
        QCOMPARE(other.remove(it.key()), 1);
        QVERIFY(!other.contains(it.key()));
    }
    QVERIFY(other.isEmpty() && other == StoredHeaderFields() && !stored.exactValue(u"Via"_s));
    QCOMPARE(&stored.map(), &StoredHeaderFields(stored).map()); // made once for all copies
}

void StoreTest::snapshotsOfTheRecorderStayAsTheyWere()
{
    const auto text = [](const QXTraceList &traces) {
        QStringList lines;
        for (const QXRequestTrace &trace : traces) {
            const auto &response = trace.response;
            lines << u"%1 %2 %3 %4 %5 %6"_s.arg(trace.id, trace.url->toString())
                         .arg(trace.body ? trace.body->size() : -1)
                         .arg(trace.duration.has_value())
                         .arg(response ? response->statusCode : 0)
                         .arg(response && response->body ? response->body->size() : -1);
        }
        return lines;
    };
    std::mt19937 random(3);
    std::vector<std::pair<QXTraceList, QStringList>> snapshots;
    std::vector<QXTraceList::CellPtr> cells;
    QStringList cellTexts;
    for (int step = 0; step < 2000; ++step) {
        const auto any = QString::number(random() % std::max(qsizetype(1), m_recorder.requests().size()));
        URLRequest request = makeRequest(u"http://host/%1"_s.arg(step));
        request.httpBody = QByteArray(step % 7, 'x');
        const QByteArray body(step % 11, 'y');
        switch (random() % 8) {
        case 0:
            m_recorder.complete(any, makeResponse(200 + step), body, {});
            break;
        case 1:
            m_recorder.progress(any, makeResponse(200 + step), body);
            break;
        case 2:
            m_recorder.amend(any, request);
            break;
        case 3:
            m_recorder.setBodyBudget(step % 2 ? std::optional<qsizetype>(50 + step % 3000) : std::nullopt);
            break;
        default:
            m_recorder.record(QString::number(m_recorder.requests().size()), request);
        }
        if (step % 61 == 0)
            snapshots.emplace_back(m_recorder.requests(), text(m_recorder.requests()));
        // A pointer to a cell alone is a snapshot of it, too.
        if (step % 97 == 0 && !m_recorder.requests().isEmpty()) {
            cells.push_back(m_recorder.requests().cell(0));
            cellTexts << text(m_recorder.requests()).constFirst();
        }
    }
    for (const auto &[snapshot, expected] : snapshots)
        QCOMPARE(text(snapshot), expected);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        QXTraceList list;
        list.prepend(cells[i]);
        QCOMPARE(text(list).constFirst(), cellTexts[qsizetype(i)]);
    }
    m_recorder.setBodyBudget(std::nullopt);
}

void StoreTest::changesAreMadeInPlace()
{
    constexpr int count = 2000;
    for (int i = 0; i < count; ++i)
        m_recorder.record(QString::number(i), makeRequest(u"http://host/"_s));
    const auto newest = [this] {
        return m_recorder.requests().cell(0).get();
    };
    const auto *const cell = newest();
    m_recorder.complete(QString::number(count - 1), makeResponse(200), "body", {});
    QCOMPARE(newest(), cell);

    // For a snapshot only what changes is copied.
    const QXTraceList snapshot = m_recorder.requests();
    m_recorder.complete(u"7"_s, makeResponse(200), "body", {});
    m_recorder.complete(u"7"_s, makeResponse(201), "body", {});
    QList<qsizetype> changed;
    snapshot.visitDifferences(m_recorder.requests(), [&](qsizetype position) { changed << position; });
    QCOMPARE(changed, QList<qsizetype>{7});
    QCOMPARE(newest(), cell);
}

void StoreTest::snapshotsMayEndInAnotherThread()
{
    for (int round = 0; round < 200; ++round) {
        const QString id = QString::number(round);
        m_recorder.record(id, makeRequest(u"http://host/"_s));
        std::atomic<int> seen = -1;
        std::thread reader([&seen, traces = std::make_unique<QXTraceList>(m_recorder.requests())]() mutable {
            int complete = 0;
            for (const QXRequestTrace &trace : *traces)
                complete += trace.duration.has_value();
            traces.reset();
            seen = complete;
        });
        // The first change happens beside the reader, the others after it without any other synchronisation.
        for (int change = 0; change < 3; ++change) {
            m_recorder.complete(id, makeResponse(200), "body", {});
            while (change == 0 && seen.load(std::memory_order_relaxed) < 0)
                std::this_thread::yield();
        }
        reader.join();
        QCOMPARE(seen, round);
    }
    QCOMPARE(m_recorder.requests().size(), 200);
}

/// Returns when the recorder has looked at its loose bodies: behind them it finds one that nobody shares.
void StoreTest::waitForALook()
{
    URLRequest request = makeRequest(u"http://host/"_s);
    request.httpBody = looseBody(1000);
    m_recorder.record(u"last"_s, request);
    request = {};
    QTRY_VERIFY(isTight(m_recorder.requests()[0].body));
}

void StoreTest::looseBodiesBecomeTight_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("isRequest");
    QTest::newRow("small request") << qsizetype(100) << true;
    QTest::newRow("large response") << qsizetype(300'000) << false;
}

void StoreTest::looseBodiesBecomeTight()
{
    QFETCH(const qsizetype, size);
    QFETCH(const bool, isRequest);
    QByteArray body = looseBody(size);
    URLRequest request = makeRequest(u"http://host/"_s);
    if (isRequest)
        request.httpBody = body;
    m_recorder.record(u"A"_s, request);
    m_recorder.complete(u"A"_s, makeResponse(200), isRequest ? QByteArray() : body, {});
    request = {};
    const auto kept = [&] {
        const QXTraceList traces = m_recorder.requests();
        const QXRequestTrace &oldest = traces[traces.size() - 1];
        return isRequest ? *oldest.body : *oldest.response->body;
    };
    // As long as the host has the buffer, a copy would only take more.
    waitForALook();
    QCOMPARE(kept().constData(), body.constData());
    body = {};
    QTRY_VERIFY(isTight(kept()));
    QCOMPARE(kept(), QByteArray(size, 'x'));
}

void StoreTest::looseBodiesWaitForSnapshots()
{
    m_recorder.record(u"A"_s, makeRequest(u"http://host/"_s));
    m_recorder.complete(u"A"_s, makeResponse(200), looseBody(5000), {});
    auto snapshot = std::make_unique<QXTraceList>(m_recorder.requests());
    const char *const bytes = (*snapshot)[0].response->body->constData();
    waitForALook();
    QCOMPARE((*snapshot)[0].response->body->constData(), bytes);
    QVERIFY(!isTight((*snapshot)[0].response->body));
    snapshot.reset();
    m_recorder.record(u"B"_s, makeRequest(u"http://host/"_s));
    QTRY_VERIFY(isTight(m_recorder.requests()[2].response->body));
    m_recorder.complete(u"B"_s, makeResponse(200), looseBody(5000), {});
    m_recorder.clear(); // before the next look
    waitForALook();
    QCOMPARE(m_recorder.requests().size(), 1);
}

void StoreTest::capturedBodiesAreTight_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reading");
    QTest::addColumn<QString>("upload");
    for (const auto *reading : {"session", "end", "readyRead", "never"}) {
        const QString how = QString::fromLatin1(reading);
        QTest::addRow("plain, %s", reading) << u"/binary?size=700000"_s << how << QString();
        QTest::addRow("coded, %s", reading) << u"/api/v1/articles"_s << how << QString();
    }
    for (const auto *upload : {"session", "bytes", "device"})
        QTest::addRow("upload, %s", upload) << u"/status/204"_s << u"end"_s << QString::fromLatin1(upload);
}

void StoreTest::capturedBodiesAreTight()
{
    QFETCH(const QString, path);
    QFETCH(const QString, reading);
    QFETCH(const QString, upload);
    startAfresh();
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(QByteArray(300'000, 'x'));
    file.seek(0);
    if (reading == u"session"_s || upload == u"session"_s) {
        URLRequest request(m_server.url(path));
        if (!upload.isEmpty()) {
            request.httpMethod = u"POST"_s;
            request.httpBody = looseBody(300'000);
        }
        bool isDone = false;
        NSURLSession::shared()
            .dataTaskWithRequest(request, [&](const auto &, const auto &, const auto &) { isDone = true; })
            ->resume();
        QTRY_VERIFY(isDone);
    } else {
        QXNetworkAccessManager manager;
        QNetworkRequest request(m_server.url(path));
        request.setRawHeader("Content-Type", "text/plain");
        const std::unique_ptr<QNetworkReply> reply(upload == u"bytes"_s
                                                       ? manager.post(request, looseBody(300'000))
                                                   : upload == u"device"_s ? manager.post(request, &file)
                                                                           : manager.get(request));
        if (reading == u"readyRead"_s)
            connect(reply.get(), &QIODevice::readyRead, reply.get(), [&] { reply->readAll(); });
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        QVERIFY(finished.wait());
        if (reading == u"end"_s)
            reply->readAll();
    }
    QTRY_VERIFY(newest().duration);
    const auto kept = [&] {
        return upload.isEmpty() ? newest().response->body : newest().body;
    };
    QVERIFY(kept()->size() >= (upload.isEmpty() ? 1000 : 300'000));
    QTRY_VERIFY(isTight(kept()));
}

QTEST_GUILESS_MAIN(StoreTest)
#include "StoreTest.moc"
