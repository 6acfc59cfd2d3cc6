#include "Tests/Exchanges.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXLog.h"

#include "Platform/NSNotificationCenter.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace Quorvix;

using namespace Exchanges;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QStringList lines;

void keepLine(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    if (qstrcmp(context.category, "Quorvix") == 0)
        lines.append(message);
}

/// What the host received.
struct Delivery
{
    std::optional<QByteArray> data;
    NSURLResponsePtr response;
    std::optional<NSError> error;

    [[nodiscard]] const NSHTTPURLResponse &http() const
    {
        return dynamic_cast<const NSHTTPURLResponse &>(*response);
    }

    [[nodiscard]] QString header(const char *name) const
    {
        const auto found = http().allHeaderFields().find(QString::fromLatin1(name));
        return found == http().allHeaderFields().end() ? u"absent"_s : description(found->second);
    }
};

} // namespace

class BreakpointTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keys();
    void rulesAreSortedAndAnnounced();
    void whatIsNotHeld();
    void heldResponsesWaitInLine();
    void cooldownLetsResponsesPass();
    void edits_data();
    void edits();
    void continueRebuildsTheResponse();
    void handlerMayRunAnEventLoop();
    void logFollowsTheLevel();

private:
    bool check(const QString &id, NSHeaderFields fields = {}, std::optional<QByteArray> data = "body"_ba);

    const QUrl m_url{u"http://host/a"_s};
    std::unique_ptr<QXBreakpointCenter> m_center;
    QXBreakpointCenter::TimePoint m_now;
    QList<Delivery> m_delivered;
    int m_posts = 0;
    NSNotificationObserver m_observer =
        NSNotificationCenter::defaultCenter().addObserver(QuorvixBreakpointChanged, [this] { ++m_posts; });
};

void BreakpointTest::init()
{
    m_center = std::make_unique<QXBreakpointCenter>();
    m_center->setClock([this] { return m_now; });
    QXBreakpointStore::shared().setRules({*QXBreakpointKey::make(m_url, std::nullopt)});
    QXRequestRecorder::shared().clear();
    m_delivered.clear();
    m_posts = 0;
    lines.clear();
    qInstallMessageHandler(&keepLine);
}

void BreakpointTest::cleanup()
{
    qInstallMessageHandler(nullptr);
    QXLog::setLevel(QXLogLevel::none);
}

bool BreakpointTest::check(const QString &id, NSHeaderFields fields, std::optional<QByteArray> data)
{
    QXRequestRecorder::shared().record(id, URLRequest(m_url));
    return m_center->check(URLRequest(m_url), id, data, makeResponse(200, fields), std::nullopt,
                           [this](auto body, auto delivered, auto error) {
                               m_delivered.append({std::move(body), std::move(delivered), std::move(error)});
                           });
}

void BreakpointTest::keys()
{
    const auto text = [](const QString &url, const std::optional<QString> &method = {}) {
        return QXBreakpointKey::make(QUrl(url), method)->displayText();
    };
    QCOMPARE(text(u"http://host/a"_s, u"post"_s), u"POST host/a"_s);
    QCOMPARE(text(u"http://host"_s), u"GET host/"_s);
    QCOMPARE(text(u"https://host:8080/a%20b?c=d#e"_s), u"GET host/a b"_s);
    QCOMPARE(text(u"/api/users"_s), u"GET /api/users"_s);
    QVERIFY(!QXBreakpointKey::make(std::nullopt, u"GET"_s));
}

void BreakpointTest::rulesAreSortedAndAnnounced()
{
    QXBreakpointStore store;
    qsizetype sizeWhenAnnounced = -1;
    connect(&store, &QXBreakpointStore::objectWillChange, this,
            [&] { sizeWhenAnnounced = store.rules().size(); });
    const QSignalSpy changed(&store, &QXBreakpointStore::rulesChanged);
    const auto get = u"GET"_s;
    store.setRules({{u"POST"_s, u"hostA"_s, u"/x"_s},
                    {get, u"b"_s, u"/x"_s},
                    {get, u"hostA"_s, u"/x"_s},
                    {get, u"A"_s, u"/x"_s}});
    QCOMPARE(sizeWhenAnnounced, 0);
    QCOMPARE(changed.count(), 1);
    QStringList texts;
    for (const auto &key : store.sortedRules())
        texts.append(key.displayText());
    QCOMPARE(texts.join(u','), u"GET A/x,GET b/x,GET hostA/x,POST hostA/x"_s);
    store.remove({get, u"b"_s, u"/x"_s});
    QVERIFY(!store.contains({get, u"b"_s, u"/x"_s}));
    QVERIFY(!store.contains({get, u"a"_s, u"/x"_s})); // case-sensitive
}

void BreakpointTest::whatIsNotHeld()
{
    const NSURLResponsePtr http = makeResponse(200);
    const auto isHeld = [this](const URLRequest &request, const NSURLResponsePtr &response) {
        return m_center->check(request, u"1"_s, {}, response, {}, {});
    };
    QVERIFY(!isHeld(makeRequest(u"http://host/b"_s), http)); // no rule
    QVERIFY(!isHeld(makeRequest(QString()), http));
    QVERIFY(!isHeld(URLRequest(m_url), std::make_shared<const NSURLResponse>(m_url)));
    QVERIFY(!isHeld(URLRequest(m_url), nullptr));
    QVERIFY(!m_center->activeBreakpoint());
    QCOMPARE(m_posts, 0);
}

void BreakpointTest::heldResponsesWaitInLine()
{
    QXLog::setLevel(QXLogLevel::info);
    for (const auto *id : {"1", "2", "3"})
        QVERIFY(check(QString::fromLatin1(id)));
    QCOMPARE(m_posts, 1);
    QCOMPARE(m_center->activeBreakpoint()->requestId, u"1"_s);
    QCOMPARE(m_center->activeBreakpoint()->displayTitle(), u"GET host/a"_s);
    QCOMPARE(m_center->queue().size(), 2U);
    QVERIFY(m_delivered.isEmpty());
    QVERIFY(!QXRequestRecorder::shared().requests()[2].duration);

    m_center->continueActive();
    QCOMPARE(m_posts, 2);
    QCOMPARE(m_center->activeBreakpoint()->requestId, u"2"_s);
    QCOMPARE(m_delivered.size(), 1);
    QVERIFY(QXRequestRecorder::shared().requests()[2].response);

    m_center->apply(std::nullopt, std::nullopt);
    m_center->continueActive();
    QVERIFY(!m_center->activeBreakpoint());
    QCOMPARE(m_delivered[1].data, ""_ba); // an empty text
    QCOMPARE(m_posts, 4);
    m_center->continueActive();
    QCOMPARE(m_posts, 4);
    QCOMPARE(lines, QStringList({u"[Breakpoint] activated queue=0"_s, u"[Breakpoint] queued count=1"_s,
                                 u"[Breakpoint] queued count=2"_s,
                                 u"[Breakpoint] continue active=true queue=2 main=true cooldown=0.6s"_s,
                                 u"[Breakpoint] resolved next=true queue=1"_s, u"[Breakpoint] apply"_s,
                                 u"[Breakpoint] resolved next=true queue=0"_s,
                                 u"[Breakpoint] continue active=true queue=0 main=true cooldown=0.6s"_s,
                                 u"[Breakpoint] resolved next=false queue=0"_s,
                                 u"[Breakpoint] continue active=false queue=0 main=true cooldown=0.6s"_s}));
}

void BreakpointTest::cooldownLetsResponsesPass()
{
    m_center->continueActive(); // starts the cooldown even when nothing is held
    m_now += 300ms;
    QVERIFY(!check(u"1"_s));
    m_now += 400ms;
    QVERIFY(check(u"2"_s));
    m_center->continueActive();
    m_now += 599ms;
    QVERIFY(!check(u"3"_s));
    m_now += 1ms;
    QVERIFY(check(u"4"_s)); // the same endpoint as the one just released
}

void BreakpointTest::edits_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<qint64>("delivered");
    QTest::newRow("plus sign") << u"+201"_s << qint64(201);
    QTest::newRow("negative stands") << u"-1"_s << qint64(-1);
    QTest::newRow("no digits") << u"abc"_s << qint64(200);
    QTest::newRow("space") << u" 404"_s << qint64(200);
    QTest::newRow("two signs") << u"+-4"_s << qint64(200);
    QTest::newRow("other digits") << u"٤٠٤"_s << qint64(200);
    QTest::newRow("too large") << u"9223372036854775808"_s << qint64(200);
}

void BreakpointTest::edits()
{
    QFETCH(const QString, status);
    QFETCH(const qint64, delivered);
    QVERIFY(check(u"1"_s));
    m_center->apply(status, u"ü"_s);
    const Delivery &delivery = m_delivered.constFirst();
    QCOMPARE(delivery.http().statusCode(), delivered);
    QCOMPARE(delivery.data, "\xc3\xbc"_ba);
    QCOMPARE(delivery.header("Content-Length"), u"2"_s);
    QCOMPARE(delivery.header("Content-Encoding"), u"absent"_s);
    QCOMPARE(QXRequestRecorder::shared().requests()[0].response->statusCode, delivered);
    QCOMPARE(QXRequestRecorder::shared().requests()[0].response->body, "\xc3\xbc"_ba);
}

void BreakpointTest::continueRebuildsTheResponse()
{
    const auto gzip = u"gzip"_s;
    QVERIFY(check(u"1"_s, {{u"Content-Encoding"_s, gzip},
                           {u"content-encoding"_s, gzip},
                           {u"content-length"_s, u"9"_s},
                           {u"X-Number"_s, qint64(7)}}));
    QVERIFY(check(u"2"_s, {{u"Content-Encoding"_s, gzip}}, {}));
    m_center->continueActive();
    m_center->continueActive();
    const Delivery &whole = m_delivered.at(0);
    QCOMPARE(whole.http().httpVersion(), u"HTTP/1.1"_s);
    QCOMPARE(whole.header("Content-Encoding"), u"identity"_s);
    QCOMPARE(whole.header("content-encoding"), gzip);
    QCOMPARE(whole.header("Content-Length"), u"4"_s);
    QCOMPARE(whole.header("content-length"), u"9"_s);
    QCOMPARE(whole.header("X-Number"), u"7"_s);
    const Delivery &bodiless = m_delivered.at(1);
    QVERIFY(!bodiless.data);
    QCOMPARE(bodiless.header("Content-Encoding"), gzip);
    QCOMPARE(bodiless.header("Content-Length"), u"absent"_s);
}

void BreakpointTest::handlerMayRunAnEventLoop()
{
    int calls = 0;
    QVERIFY(m_center->check(URLRequest(m_url), u"1"_s, {}, makeResponse(200), {}, [&](auto, auto, auto) {
        ++calls;
        m_center->continueActive(); // a second press, while the first is still being served
        m_now += 1s;
        QVERIFY(check(u"2"_s));
    }));
    m_center->continueActive();
    QCOMPARE(calls, 1);
    QCOMPARE(m_center->activeBreakpoint()->requestId, u"2"_s);
}

void BreakpointTest::logFollowsTheLevel()
{
    for (int level = 0; level <= 3; ++level) {
        lines.clear();
        QXLog::setLevel(*makeQXLogLevel(level));
        for (const auto each : {QXLogLevel::none, QXLogLevel::error, QXLogLevel::info, QXLogLevel::debug})
            QXLog::log(each, u"100% \"as it stands\""_s);
        QCOMPARE(lines, QStringList(level, u"100% \"as it stands\""_s));
    }
    QVERIFY(!makeQXLogLevel(4) && !makeQXLogLevel(-1));
}

QTEST_GUILESS_MAIN(BreakpointTest)
#include "BreakpointTest.moc"
