#include "Examples/DemoServer.h"

#include "Tests/SessionKit.h"

#include "Platform/HTTPCookieStorage.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QSemaphore>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QTest>

using namespace Quorvix;

using namespace std::chrono_literals;

using namespace Qt::StringLiterals;

class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void statusIsNoError();
    void requestArrivesAsGiven();
    void nothingCanBeInjected();
    void redirects();
    void contentIsDecoded();
    void bodiesNeedNoMoreThanTheirSize_data();
    void bodiesNeedNoMoreThanTheirSize();
    void failures_data();
    void failures();
    void serverWithoutTls();
    void brokenConnectionFailsNoOther();
    void timeOut();
    void cancelling();
    void cookiesAreShared();
    void otherSchemes();
    void sessionMayGoBeforeItsTasks();

private:
    URLRequest request(const QString &path, const QString &method = u"GET"_s) const
    {
        URLRequest made(m_server.url(path));
        made.httpMethod = method;
        return made;
    }

    DemoServer m_server;
    NSURLSession m_session;
};

void SessionTest::initTestCase()
{
    QVERIFY(m_server.start());
}

void SessionTest::statusIsNoError()
{
    for (const int status : {204, 304, 404, 503}) {
        const Outcome outcome = load(m_session, request(u"/status/%1"_s.arg(status)));
        QCOMPARE(outcome.status(), status);
        QVERIFY(!outcome.error && outcome.data);
    }
}

void SessionTest::requestArrivesAsGiven()
{
    for (const auto &[method, body] : {std::pair(u"GET"_s, QByteArray()),
                                       {u"PUT"_s, "\0\xff\r\n"_ba},
                                       {u"DELETE"_s, "x"_ba},
                                       {u"POST"_s, ""_ba}}) {
        URLRequest sent = request(u"/echo?q=a%26b"_s, method);
        sent.setValue(u"it's \"quoted\""_s, u"X-Note"_s);
        if (!body.isNull())
            sent.httpBody = body;
        const QJsonObject arrived = load(m_session, sent).json();
        QCOMPARE(arrived["method"_L1].toString(), method);
        QCOMPARE(QByteArray::fromBase64(arrived["body"_L1].toString().toLatin1()), body);
        QVERIFY(QJsonDocument(arrived).toJson().contains("it's \\\"quoted\\\""));
    }
}

void SessionTest::nothingCanBeInjected()
{
    const auto split = load(m_session, request(u"/echo"_s, u"GET / HTTP/1.1\r\nX: "_s));
    QCOMPARE(split.error->code, qint64(NSURLErrorBadURL));
    URLRequest sent = request(u"/echo"_s);
    sent.setValue(u"a\r\nX-Injected: 1"_s, u"X-Note"_s);
    sent.setValue(u"1"_s, u"X-Injected: 1\r\nX-Other"_s);
    const Outcome outcome = load(m_session, sent);
    QCOMPARE(outcome.status(), 200);
    QVERIFY(!outcome.data->contains("njected"));
}

void SessionTest::redirects()
{
    for (const int status : {301, 303, 307, 308}) {
        URLRequest sent = request(u"/moved/%1"_s.arg(status), u"POST"_s);
        sent.httpBody = "body"_ba;
        const Outcome outcome = load(m_session, sent);
        QCOMPARE(outcome.status(), 200);
        QCOMPARE(outcome.http()->url()->path(), u"/echo"_s);
        const bool keeps = status >= 307;
        QCOMPARE(outcome.json()["method"_L1].toString(), keeps ? u"POST"_s : u"GET"_s);
        QCOMPARE(outcome.json()["body"_L1].toString(), keeps ? u"Ym9keQ=="_s : QString());
    }
}

void SessionTest::contentIsDecoded()
{
    const Outcome outcome = load(m_session, request(u"/api/v1/articles"_s));
    QVERIFY(outcome.http()->allHeaderFields().contains(u"Content-Encoding"_s));
    QVERIFY(!QJsonDocument::fromJson(*outcome.data).isNull());
}

void SessionTest::bodiesNeedNoMoreThanTheirSize_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("small") << u"/binary?size=189"_s;
    QTest::newRow("large") << u"/binary?size=4000000"_s;
    QTest::newRow("decoded") << u"/api/v1/articles"_s;
    QTest::newRow("empty") << u"/status/204"_s;
}

void SessionTest::bodiesNeedNoMoreThanTheirSize()
{
    QFETCH(const QString, path);
    const Outcome outcome = load(m_session, request(path));
    QCOMPARE(outcome.data.value().capacity(), outcome.data->size());
}

void SessionTest::failures_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<qint64>("code");
    const auto row = [](const char *name, const QUrl &url, qint64 code) {
        QTest::newRow(name) << url << code;
    };
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    row("no URL", QUrl(), NSURLErrorUnsupportedURL);
    row("unknown scheme", QUrl(u"gopher://host/"_s), NSURLErrorUnsupportedURL);
    row("unknown host", QUrl(u"http://unknown.invalid/"_s), NSURLErrorCannotFindHost);
    row("nobody listens", QUrl(u"http://127.0.0.1:%1/"_s.arg(closed.serverPort())),
        NSURLErrorCannotConnectToHost);
    row("closed before a response", m_server.url(u"/drop"_s), NSURLErrorNetworkConnectionLost);
    row("closed in the middle of the body", m_server.url(u"/drop-midway"_s), NSURLErrorNetworkConnectionLost);
    row("endless redirects", m_server.url(u"/redirect-loop"_s), NSURLErrorHTTPTooManyRedirects);
}

void SessionTest::failures()
{
    QFETCH(const QUrl, url);
    QFETCH(const qint64, code);
    const Outcome outcome = load(m_session, url.isEmpty() ? URLRequest() : URLRequest(url));
    QVERIFY(outcome.error.has_value());
    QCOMPARE(outcome.error->domain, NSURLErrorDomain);
    QCOMPARE(outcome.error->code, code);
    QVERIFY(!outcome.error->localizedDescription.isEmpty());
    QVERIFY(!outcome.data); // never half a body
}

void SessionTest::serverWithoutTls()
{
    QTcpServer plain;
    QVERIFY(plain.listen(QHostAddress::LocalHost));
    const URLRequest secure(QUrl(u"https://127.0.0.1:%1/"_s.arg(plain.serverPort())));
    const Outcome outcome = load(m_session, secure, [&](auto &) {
        QVERIFY(plain.waitForNewConnection(5000));
        QTcpSocket *const socket = plain.nextPendingConnection();
        socket->write("HTTP/1.1 400 Bad Request\r\n\r\n");
        QVERIFY(socket->waitForBytesWritten(5000));
    });
    QVERIFY(outcome.error.has_value());
    QCOMPARE(outcome.error->code, qint64(NSURLErrorSecureConnectionFailed));
}

/// More tasks than there are connections to a server, one of which breaks while others wait.
void SessionTest::brokenConnectionFailsNoOther()
{
    constexpr int broken = 8;
    constexpr int others = 40;
    QSemaphore done;
    QSemaphore failed;
    for (int i = 0; i < broken + others; ++i) {
        URLRequest request = this->request(i < broken ? u"/drop"_s : i % 2 ? u"/slow?ms=20"_s : u"/echo"_s);
        if (i >= broken && i % 4 == 0) {
            request.httpMethod = u"POST"_s;
            request.httpBody = QByteArray(100'000, 'x');
        }
        m_session
            .dataTaskWithRequest(request,
                                 [&](auto, auto, auto error) {
                                     if (error)
                                         failed.release();
                                     done.release();
                                 })
            ->resume();
    }
    QVERIFY(done.tryAcquire(broken + others, 10'000));
    QCOMPARE(failed.available(), broken);
}

void SessionTest::timeOut()
{
    URLRequest slow = request(u"/slow?ms=5000"_s);
    slow.timeoutInterval = 200ms;
    QCOMPARE(load(m_session, slow).error->code, qint64(NSURLErrorTimedOut));

    NSURLSessionConfiguration impatient;
    impatient.timeoutIntervalForRequest = 200ms;
    NSURLSession session(impatient);
    QCOMPARE(load(session, request(u"/slow?ms=5000"_s)).error->code, qint64(NSURLErrorTimedOut));
}

void SessionTest::cancelling()
{
    const auto cancel = [](NSURLSessionDataTask &task) {
        task.cancel();
        task.cancel();
    };
    // load() does not wait for as long as the server does.
    const Outcome running = load(m_session, request(u"/slow?ms=15000"_s), cancel);
    QCOMPARE(running.error->code, qint64(NSURLErrorCancelled));

    QSemaphore done;
    const auto suspended = m_session.dataTaskWithRequest(request(u"/echo"_s), [&](auto, auto, auto error) {
        if (error && error->code == NSURLErrorCancelled)
            done.release();
    });
    suspended->cancel();
    QVERIFY(done.tryAcquire(1, 5000));
    QCOMPARE(suspended->state(), NSURLSessionDataTask::State::Completed);
    suspended->resume();
    QCOMPARE(suspended->state(), NSURLSessionDataTask::State::Completed);
}

void SessionTest::cookiesAreShared()
{
    auto &storage = HTTPCookieStorage::shared();
    storage.removeAllCookies();
    NSURLSessionConfiguration without;
    without.httpShouldSetCookies = false;
    NSURLSession cookieless(without);
    load(cookieless, request(u"/set-cookies"_s));
    QVERIFY(storage.cookiesForURL(m_server.url()).isEmpty());

    const Outcome outcome = load(m_session, request(u"/set-cookies"_s));
    QCOMPARE(description(outcome.http()->allHeaderFields().at(u"Set-Cookie"_s)).count(u'\n'), 1);
    const auto cookies = storage.cookiesForURL(m_server.url());
    QCOMPARE(cookies.size(), 2);
    NSURLSession another;
    QVERIFY(load(another, request(u"/echo"_s)).data->contains(cookies.constFirst().name()));
    QVERIFY(!load(cookieless, request(u"/echo"_s)).data->contains(cookies.constFirst().name()));
}

void SessionTest::otherSchemes()
{
    const Outcome outcome = load(m_session, URLRequest(QUrl(u"data:text/plain,hello"_s)));
    QVERIFY(!outcome.error && outcome.response && !outcome.http());
    QCOMPARE(outcome.data, "hello"_ba);
    QVERIFY(load(m_session, URLRequest(QUrl(u"file:///no/such/file"_s))).error.has_value());
}

void SessionTest::sessionMayGoBeforeItsTasks()
{
    QSemaphore done;
    const auto task =
        NSURLSession().dataTaskWithRequest(request(u"/slow?ms=50"_s), [&](auto, auto response, auto) {
            if (response)
                done.release();
        });
    task->resume();
    QVERIFY(done.tryAcquire(1, 10'000));
}

/// A task that is resumed while there is no application starts with the next one.
static int startBeforeTheApplication(int argc, char *argv[])
{
    QSemaphore done;
    NSURLSession session;
    const auto task = session.dataTaskWithRequest(URLRequest(QUrl(u"data:text/plain,early"_s)),
                                                  [&](auto, auto, auto) { done.release(); });
    task->resume();
    const QCoreApplication application(argc, argv);
    return done.tryAcquire(1, 10'000) ? 0 : 1;
}

/// The end of the application does not wait for ever for a handler, and calls no other one afterwards.
static int endWhileAHandlerRuns(int argc, char *argv[])
{
    QSemaphore entered;
    QSemaphore left;
    std::atomic<int> calls = 0;
    NSURLSession session;
    QElapsedTimer timer;
    {
        const QCoreApplication application(argc, argv);
        for (int i = 0; i < 20; ++i) {
            session
                .dataTaskWithRequest(URLRequest(QUrl(u"data:text/plain,late"_s)),
                                     [&](auto, auto, auto) {
                                         ++calls;
                                         entered.release();
                                         left.acquire();
                                     })
                ->resume();
        }
        entered.acquire();
        timer.start();
    }
    const bool isInTime = timer.elapsed() < 5000;
    left.release(20);
    const int next = startBeforeTheApplication(argc, argv);
    return isInTime && calls == 1 ? next : 1;
}

int main(int argc, char *argv[])
{
    int failures = startBeforeTheApplication(argc, argv);
    if (failures)
        qWarning("a task that waits for the application does not start");
    {
        const QCoreApplication application(argc, argv);
        SessionTest test;
        failures += QTest::qExec(&test, argc, argv);
    }
    if (endWhileAHandlerRuns(argc, argv)) {
        qWarning("a handler disturbs the end of the application");
        ++failures;
    }
    return failures;
}

#include "SessionTest.moc"
