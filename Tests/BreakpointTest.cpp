#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXLog.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/NSNotificationCenter.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace std::chrono_literals;

namespace {

QStringList lines;

void keepLine(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    if (qstrcmp(context.category, "Quorvix") == 0)
        lines.append(message);
}

/// What reached the host.
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
        return found == http().allHeaderFields().end() ? QStringLiteral("absent")
                                                       : description(found->second);
    }
};

} // namespace

class BreakpointTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keys_data();
    void keys();
    void rulesAreSortedAndAnnounced();
    void whatIsNotHeld_data();
    void whatIsNotHeld();
    void heldResponsesWaitInLine();
    void cooldownLetsResponsesPass();
    void edits_data();
    void edits();
    void continueRebuildsTheResponse();
    void handlerMayRunAnEventLoop();
    void logFollowsTheLevel_data();
    void logFollowsTheLevel();

private:
    bool check(const QString &id, const QString &url = QStringLiteral("http://host/a"),
               NSHeaderFields fields = {}, std::optional<QByteArray> data = QByteArray("body"));

    const QUrl m_url{QStringLiteral("http://host/a")};
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

bool BreakpointTest::check(const QString &id, const QString &url, NSHeaderFields fields,
                           std::optional<QByteArray> data)
{
    const URLRequest request{QUrl(url)};
    QXRequestRecorder::shared().record(id, request);
    const auto response =
        NSHTTPURLResponse::create(request.url.value(), 200, QStringLiteral("HTTP/2.0"), fields);
    return m_center->check(request, id, data, response, std::nullopt,
                           [this](auto body, auto delivered, auto error) {
                               m_delivered.append({std::move(body), std::move(delivered), std::move(error)});
                           });
}

void BreakpointTest::keys_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("text");
    QTest::newRow("no method is GET")
        << QStringLiteral("http://host/a") << QString() << QStringLiteral("GET host/a");
    QTest::newRow("method in upper case")
        << QStringLiteral("http://host/a") << QStringLiteral("post") << QStringLiteral("POST host/a");
    QTest::newRow("empty path") << QStringLiteral("http://host") << QString() << QStringLiteral("GET host/");
    QTest::newRow("scheme, port, query, fragment left out")
        << QStringLiteral("https://host:8080/a?b=c#d") << QString() << QStringLiteral("GET host/a");
    QTest::newRow("path is decoded") << QStringLiteral("http://host/a%20b") << QString()
                                     << QStringLiteral("GET host/a b");
    QTest::newRow("no host") << QStringLiteral("/api/users") << QString() << QStringLiteral("GET /api/users");
}

void BreakpointTest::keys()
{
    QFETCH(const QString, url);
    QFETCH(const QString, method);
    QFETCH(const QString, text);
    const auto key = QXBreakpointKey::make(QUrl(url), method.isNull() ? std::nullopt : std::optional(method));
    QCOMPARE(key->displayText(), text);
    QVERIFY(!QXBreakpointKey::make(std::nullopt, method));
}

void BreakpointTest::rulesAreSortedAndAnnounced()
{
    QXBreakpointStore store;
    qsizetype sizeWhenAnnounced = -1;
    connect(&store, &QXBreakpointStore::objectWillChange, this,
            [&] { sizeWhenAnnounced = store.rules().size(); });
    const QSignalSpy changed(&store, &QXBreakpointStore::rulesChanged);
    const auto get = QStringLiteral("GET");
    store.setRules({{QStringLiteral("POST"), QStringLiteral("hostA"), QStringLiteral("/x")},
                    {get, QStringLiteral("b"), QStringLiteral("/x")},
                    {get, QStringLiteral("hostA"), QStringLiteral("/x")},
                    {get, QStringLiteral("A"), QStringLiteral("/x")}});
    QCOMPARE(sizeWhenAnnounced, 0);
    QCOMPARE(changed.count(), 1);
    QStringList texts;
    for (const auto &key : store.sortedRules())
        texts.append(key.displayText());
    QCOMPARE(texts.join(u','), QStringLiteral("GET A/x,GET b/x,GET hostA/x,POST hostA/x"));
    store.remove({get, QStringLiteral("b"), QStringLiteral("/x")});
    QVERIFY(!store.contains({get, QStringLiteral("b"), QStringLiteral("/x")}));
    QVERIFY(!store.contains({get, QStringLiteral("a"), QStringLiteral("/x")})); // case counts
}

void BreakpointTest::whatIsNotHeld_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("http");
    QTest::newRow("no rule") << QStringLiteral("http://host/b") << true;
    QTest::newRow("no URL") << QString() << true;
    QTest::newRow("no HTTP response") << QStringLiteral("http://host/a") << false;
}

void BreakpointTest::whatIsNotHeld()
{
    QFETCH(const QString, url);
    QFETCH(const bool, http);
    URLRequest request;
    if (!url.isEmpty())
        request.url = QUrl(url);
    const NSURLResponsePtr response =
        http ? NSHTTPURLResponse::create(m_url, 200, QStringLiteral("HTTP/1.1"), {})
             : std::make_shared<const NSURLResponse>(m_url);
    QVERIFY(!m_center->check(request, QStringLiteral("1"), {}, response, {}, {}));
    QVERIFY(
        !m_center->check(request, QStringLiteral("1"), {}, nullptr, makeURLError(NSURLErrorTimedOut), {}));
    QVERIFY(!m_center->activeBreakpoint());
    QCOMPARE(m_posts, 0);
}

void BreakpointTest::heldResponsesWaitInLine()
{
    QXLog::setLevel(QXLogLevel::info);
    for (const auto *id : {"1", "2", "3"})
        QVERIFY(check(QString::fromLatin1(id)));
    QCOMPARE(m_posts, 1);
    QCOMPARE(m_center->activeBreakpoint()->requestId, QStringLiteral("1"));
    QCOMPARE(m_center->activeBreakpoint()->displayTitle(), QStringLiteral("GET host/a"));
    QCOMPARE(m_center->queue().size(), 2U);
    QVERIFY(m_delivered.isEmpty());
    QVERIFY(!QXRequestRecorder::shared().requests()[2].duration);

    m_center->continueActive();
    QCOMPARE(m_posts, 2);
    QCOMPARE(m_center->activeBreakpoint()->requestId, QStringLiteral("2"));
    QCOMPARE(m_delivered.size(), 1);
    QVERIFY(QXRequestRecorder::shared().requests()[2].response);

    m_center->apply(std::nullopt, std::nullopt);
    m_center->continueActive();
    QVERIFY(!m_center->activeBreakpoint());
    QCOMPARE(m_posts, 4);
    m_center->continueActive();
    QCOMPARE(m_posts, 4);
    QCOMPARE(
        lines,
        QStringList(
            {QStringLiteral("[Breakpoint] activated queue=0"), QStringLiteral("[Breakpoint] queued count=1"),
             QStringLiteral("[Breakpoint] queued count=2"),
             QStringLiteral("[Breakpoint] continue active=true queue=2 main=true cooldown=0.6s"),
             QStringLiteral("[Breakpoint] resolved next=true queue=1"), QStringLiteral("[Breakpoint] apply"),
             QStringLiteral("[Breakpoint] resolved next=true queue=0"),
             QStringLiteral("[Breakpoint] continue active=true queue=0 main=true cooldown=0.6s"),
             QStringLiteral("[Breakpoint] resolved next=false queue=0"),
             QStringLiteral("[Breakpoint] continue active=false queue=0 main=true cooldown=0.6s")}));
}

void BreakpointTest::cooldownLetsResponsesPass()
{
    m_center->continueActive(); // starts it even with nothing held
    m_now += 300ms;
    QVERIFY(!check(QStringLiteral("1")));
    m_now += 400ms;
    QVERIFY(check(QStringLiteral("2")));
    m_center->continueActive();
    m_now += 599ms;
    QVERIFY(!check(QStringLiteral("3")));
    m_now += 1ms;
    QVERIFY(check(QStringLiteral("4"))); // the same endpoint as the one just released
}

void BreakpointTest::edits_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("body");
    QTest::addColumn<qint64>("deliveredStatus");
    QTest::addColumn<QByteArray>("deliveredBody");
    const auto json = QStringLiteral("{}");
    QTest::newRow("plus sign") << QStringLiteral("+201") << json << qint64(201) << QByteArray("{}");
    QTest::newRow("negative stands") << QStringLiteral("-1") << json << qint64(-1) << QByteArray("{}");
    QTest::newRow("no digits") << QStringLiteral("abc") << QString() << qint64(200) << QByteArray("");
    QTest::newRow("empty") << QStringLiteral("") << json << qint64(200) << QByteArray("{}");
    QTest::newRow("space") << QStringLiteral(" 404") << json << qint64(200) << QByteArray("{}");
    QTest::newRow("two signs") << QStringLiteral("+-4") << json << qint64(200) << QByteArray("{}");
    QTest::newRow("sign alone") << QStringLiteral("+") << json << qint64(200) << QByteArray("{}");
    QTest::newRow("other digits") << QStringLiteral("٤٠٤") << json << qint64(200) << QByteArray("{}");
    QTest::newRow("too large") << QStringLiteral("9223372036854775808") << json << qint64(200)
                               << QByteArray("{}");
    QTest::newRow("text beyond ASCII")
        << QStringLiteral("500") << QStringLiteral("ü") << qint64(500) << QByteArray("\xc3\xbc");
}

void BreakpointTest::edits()
{
    QFETCH(const QString, status);
    QFETCH(const QString, body);
    QFETCH(const qint64, deliveredStatus);
    QFETCH(const QByteArray, deliveredBody);
    QVERIFY(check(QStringLiteral("1")));
    m_center->apply(status, body.isNull() ? std::nullopt : std::optional(body));
    const Delivery &delivery = m_delivered.constFirst();
    QCOMPARE(delivery.http().statusCode(), deliveredStatus);
    QVERIFY(delivery.data.has_value());
    QCOMPARE(*delivery.data, deliveredBody);
    QCOMPARE(delivery.header("Content-Length"), QString::number(deliveredBody.size()));
    QCOMPARE(QXRequestRecorder::shared().requests()[0].response->statusCode, deliveredStatus);
    QCOMPARE(QXRequestRecorder::shared().requests()[0].response->body, deliveredBody);
}

void BreakpointTest::continueRebuildsTheResponse()
{
    const auto gzip = QStringLiteral("gzip");
    QVERIFY(check(QStringLiteral("1"), m_url.toString(),
                  {{QStringLiteral("Content-Encoding"), gzip},
                   {QStringLiteral("content-encoding"), gzip},
                   {QStringLiteral("content-length"), QStringLiteral("9")},
                   {QStringLiteral("X-Number"), qint64(7)}}));
    QVERIFY(check(QStringLiteral("2"), m_url.toString(), {{QStringLiteral("Content-Encoding"), gzip}}, {}));
    m_center->continueActive();
    m_center->continueActive();
    const Delivery &whole = m_delivered.at(0);
    QCOMPARE(whole.http().httpVersion(), QStringLiteral("HTTP/1.1"));
    QCOMPARE(whole.header("Content-Encoding"), QStringLiteral("identity"));
    QCOMPARE(whole.header("content-encoding"), gzip);
    QCOMPARE(whole.header("Content-Length"), QStringLiteral("4"));
    QCOMPARE(whole.header("content-length"), QStringLiteral("9"));
    QCOMPARE(whole.header("X-Number"), QStringLiteral("7"));
    const Delivery &bodiless = m_delivered.at(1);
    QVERIFY(!bodiless.data);
    QCOMPARE(bodiless.header("Content-Encoding"), gzip);
    QCOMPARE(bodiless.header("Content-Length"), QStringLiteral("absent"));
}

void BreakpointTest::handlerMayRunAnEventLoop()
{
    int calls = 0;
    const URLRequest request(m_url);
    const auto response = NSHTTPURLResponse::create(m_url, 200, QStringLiteral("HTTP/1.1"), {});
    QVERIFY(m_center->check(request, QStringLiteral("1"), {}, response, {}, [&](auto, auto, auto) {
        ++calls;
        m_center->continueActive(); // a second press, while the first is still being served
        m_now += 1s;
        QVERIFY(check(QStringLiteral("2")));
    }));
    m_center->continueActive();
    QCOMPARE(calls, 1);
    QCOMPARE(m_center->activeBreakpoint()->requestId, QStringLiteral("2"));
}

void BreakpointTest::logFollowsTheLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("written");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("error") << 1 << 1;
    QTest::newRow("info") << 2 << 2;
    QTest::newRow("debug") << 3 << 3;
}

void BreakpointTest::logFollowsTheLevel()
{
    QFETCH(const int, level);
    QFETCH(const int, written);
    QXLog::setLevel(*makeQXLogLevel(level));
    for (const auto messageLevel : {QXLogLevel::none, QXLogLevel::error, QXLogLevel::info, QXLogLevel::debug})
        QXLog::log(messageLevel, QStringLiteral("100% \"as it stands\""));
    QCOMPARE(lines, QStringList(written, QStringLiteral("100% \"as it stands\"")));
    QVERIFY(!makeQXLogLevel(4) && !makeQXLogLevel(-1));
}

QTEST_GUILESS_MAIN(BreakpointTest)
#include "BreakpointTest.moc"
