#include "Examples/DemoServer.h"

#include "Platform/HTTPCookieStorage.h"
#include "Platform/NSHTTPURLResponse.h"
#include "Platform/NSURLSession.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtTest/QTest>

using namespace std::chrono_literals;

namespace {

struct Outcome
{
    std::optional<QByteArray> data;
    NSURLResponsePtr response;
    std::optional<NSError> error;
    QThread *thread = nullptr;

    [[nodiscard]] const NSHTTPURLResponse *http() const
    {
        return dynamic_cast<const NSHTTPURLResponse *>(response.get());
    }

    [[nodiscard]] qint64 status() const { return http() ? http()->statusCode() : 0; }
    [[nodiscard]] QJsonObject json() const
    {
        return QJsonDocument::fromJson(data.value_or(QByteArray())).object();
    }
};

/// Runs a task to its end, in the session's own way: nothing is exchanged in this program.
Outcome load(NSURLSession &session, const URLRequest &request,
             const std::function<void(NSURLSessionDataTask &)> &afterwards = {})
{
    Outcome outcome;
    QSemaphore done;
    const auto task = session.dataTaskWithRequest(request, [&](auto data, auto response, auto error) {
        outcome = {std::move(data), std::move(response), std::move(error), QThread::currentThread()};
        done.release();
    });
    task->resume();
    if (afterwards)
        afterwards(*task);
    if (!done.tryAcquire(1, 20'000))
        qFatal("no completion");
    return outcome;
}

} // namespace

class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void statusIsNoError_data();
    void statusIsNoError();
    void requestArrivesAsGiven_data();
    void requestArrivesAsGiven();
    void headersCannotInjectHeaders();
    void redirects_data();
    void redirects();
    void contentIsDecoded();
    void failures_data();
    void failures();
    void timeOut();
    void cancelling();
    void cookiesAreShared();
    void otherSchemes();
    void tasksFromManyThreads();
    void sessionMayGoBeforeItsTasks();

private:
    URLRequest request(const QString &path, const QString &method = QStringLiteral("GET")) const
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

void SessionTest::statusIsNoError_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {200, 201, 204, 304, 400, 401, 403, 404, 409, 418, 500, 503})
        QTest::addRow("%d", status) << status;
}

void SessionTest::statusIsNoError()
{
    QFETCH(const int, status);
    const Outcome outcome = load(m_session, request(QStringLiteral("/status/%1").arg(status)));
    QVERIFY(!outcome.error);
    QCOMPARE(outcome.status(), status);
    QVERIFY(outcome.data.has_value());
    QVERIFY(outcome.thread != QThread::currentThread());
}

void SessionTest::requestArrivesAsGiven_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("GET") << QStringLiteral("GET") << QByteArray();
    QTest::newRow("POST") << QStringLiteral("POST") << QByteArray("a=1&b=2");
    QTest::newRow("PUT") << QStringLiteral("PUT") << QByteArray("\0\xff\r\n", 4);
    QTest::newRow("PATCH") << QStringLiteral("PATCH") << QByteArray("{}");
    QTest::newRow("DELETE with a body") << QStringLiteral("DELETE") << QByteArray("x");
    QTest::newRow("POST of nothing") << QStringLiteral("POST") << QByteArray("");
}

void SessionTest::requestArrivesAsGiven()
{
    QFETCH(const QString, method);
    QFETCH(const QByteArray, body);
    URLRequest sent = request(QStringLiteral("/echo?q=a%26b"), method);
    sent.setValue(QStringLiteral("it's \"quoted\""), QStringLiteral("X-Note"));
    if (!body.isNull())
        sent.httpBody = body;
    const QJsonObject arrived = load(m_session, sent).json();
    QCOMPARE(arrived[QLatin1StringView("method")].toString(), method);
    QCOMPARE(QByteArray::fromBase64(arrived[QLatin1StringView("body")].toString().toLatin1()), body);
    const QByteArray headers = QJsonDocument(arrived).toJson();
    QVERIFY(headers.contains("it's \\\"quoted\\\""));
}

void SessionTest::headersCannotInjectHeaders()
{
    URLRequest sent = request(QStringLiteral("/echo"));
    sent.setValue(QStringLiteral("a\r\nX-Injected: 1"), QStringLiteral("X-Note"));
    sent.setValue(QStringLiteral("1"), QStringLiteral("X-Injected: 1\r\nX-Other"));
    const Outcome outcome = load(m_session, sent);
    QCOMPARE(outcome.status(), 200);
    QVERIFY(!outcome.data->contains("njected"));
}

void SessionTest::redirects_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("arrives");
    const auto get = QStringLiteral("GET");
    const auto post = QStringLiteral("POST");
    QTest::newRow("301") << 301 << get << get;
    QTest::newRow("302 turns POST into GET") << 302 << post << get;
    QTest::newRow("303 turns POST into GET") << 303 << post << get;
    QTest::newRow("307 keeps POST and body") << 307 << post << post;
    QTest::newRow("308 keeps POST and body") << 308 << post << post;
}

void SessionTest::redirects()
{
    QFETCH(const int, status);
    QFETCH(const QString, method);
    QFETCH(const QString, arrives);
    URLRequest sent = request(QStringLiteral("/moved/%1").arg(status), method);
    if (method == QLatin1StringView("POST"))
        sent.httpBody = QByteArray("body");
    const Outcome outcome = load(m_session, sent);
    QCOMPARE(outcome.status(), 200);
    QVERIFY2(!outcome.json().isEmpty(), outcome.data->constData());
    QCOMPARE(outcome.json()[QLatin1StringView("method")].toString(), arrives);
    QCOMPARE(outcome.http()->url()->path(), QStringLiteral("/echo"));
    if (arrives == QLatin1StringView("POST"))
        QCOMPARE(outcome.json()[QLatin1StringView("body")].toString(), QStringLiteral("Ym9keQ=="));
}

void SessionTest::contentIsDecoded()
{
    const Outcome outcome = load(m_session, request(QStringLiteral("/api/v1/articles")));
    QVERIFY(outcome.http()->allHeaderFields().contains(QStringLiteral("Content-Encoding")));
    QVERIFY(!QJsonDocument::fromJson(*outcome.data).isNull());
}

void SessionTest::failures_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QString>("method");
    QTest::addColumn<qint64>("code");
    const auto get = QStringLiteral("GET");
    QTest::newRow("no URL") << QUrl() << get << qint64(NSURLErrorUnsupportedURL);
    QTest::newRow("unknown scheme") << QUrl(QStringLiteral("gopher://host/")) << get
                                    << qint64(NSURLErrorUnsupportedURL);
    QTest::newRow("method that would split the request")
        << QUrl(QStringLiteral("http://127.0.0.1/")) << QStringLiteral("GET / HTTP/1.1\r\nX: ")
        << qint64(NSURLErrorBadURL);
    QTest::newRow("unknown host") << QUrl(QStringLiteral("http://unknown.invalid/")) << get
                                  << qint64(NSURLErrorCannotFindHost);
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    QTest::newRow("nobody listens") << QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort()))
                                    << get << qint64(NSURLErrorCannotConnectToHost);
    QTest::newRow("closed before a response")
        << m_server.url(QStringLiteral("/drop")) << get << qint64(NSURLErrorNetworkConnectionLost);
    QTest::newRow("closed in the middle of the body")
        << m_server.url(QStringLiteral("/drop-midway")) << get << qint64(NSURLErrorNetworkConnectionLost);
    QTest::newRow("endless redirects")
        << m_server.url(QStringLiteral("/redirect-loop")) << get << qint64(NSURLErrorHTTPTooManyRedirects);
    QUrl tls = m_server.url();
    tls.setScheme(QStringLiteral("https"));
    QTest::newRow("TLS to a server without it") << tls << get << qint64(NSURLErrorSecureConnectionFailed);
}

void SessionTest::failures()
{
    QFETCH(const QUrl, url);
    QFETCH(const QString, method);
    QFETCH(const qint64, code);
    URLRequest sent;
    if (!url.isEmpty())
        sent.url = url;
    sent.httpMethod = method;
    const Outcome outcome = load(m_session, sent);
    QVERIFY(outcome.error.has_value());
    QCOMPARE(outcome.error->domain, NSURLErrorDomain);
    QCOMPARE(outcome.error->code, code);
    QVERIFY(!outcome.error->localizedDescription.isEmpty());
    QVERIFY(!outcome.data); // never half a body
}

void SessionTest::timeOut()
{
    URLRequest slow = request(QStringLiteral("/slow?ms=5000"));
    slow.timeoutInterval = 200ms;
    QCOMPARE(load(m_session, slow).error->code, qint64(NSURLErrorTimedOut));

    NSURLSessionConfiguration impatient;
    impatient.timeoutIntervalForRequest = 200ms;
    NSURLSession session(impatient);
    QCOMPARE(load(session, request(QStringLiteral("/slow?ms=5000"))).error->code, qint64(NSURLErrorTimedOut));
}

void SessionTest::cancelling()
{
    const auto cancel = [](NSURLSessionDataTask &task) {
        task.cancel();
        task.cancel();
    };
    QElapsedTimer timer;
    timer.start();
    const Outcome running = load(m_session, request(QStringLiteral("/slow?ms=10000")), cancel);
    QCOMPARE(running.error->code, qint64(NSURLErrorCancelled));
    QVERIFY(timer.elapsed() < 5000);

    QSemaphore done;
    const auto suspended =
        m_session.dataTaskWithRequest(request(QStringLiteral("/echo")), [&](auto, auto, auto error) {
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
    load(cookieless, request(QStringLiteral("/set-cookies")));
    QVERIFY(storage.cookiesForURL(m_server.url()).isEmpty());

    const Outcome outcome = load(m_session, request(QStringLiteral("/set-cookies")));
    QCOMPARE(description(outcome.http()->allHeaderFields().at(QStringLiteral("Set-Cookie"))).count(u'\n'), 1);
    const auto cookies = storage.cookiesForURL(m_server.url());
    QCOMPARE(cookies.size(), 2);
    NSURLSession another;
    QVERIFY(load(another, request(QStringLiteral("/echo"))).data->contains(cookies.constFirst().name()));
    QVERIFY(!load(cookieless, request(QStringLiteral("/echo"))).data->contains(cookies.constFirst().name()));
}

void SessionTest::otherSchemes()
{
    const Outcome outcome = load(m_session, URLRequest(QUrl(QStringLiteral("data:text/plain,hello"))));
    QVERIFY(!outcome.error && outcome.response && !outcome.http());
    QCOMPARE(outcome.data, QByteArray("hello"));
    QVERIFY(load(m_session, URLRequest(QUrl(QStringLiteral("file:///no/such/file")))).error.has_value());
}

void SessionTest::tasksFromManyThreads()
{
    constexpr int threads = 4;
    constexpr int each = 50;
    QSemaphore done;
    std::atomic<int> wrong = 0;
    std::vector<std::unique_ptr<QThread>> makers;
    for (int i = 0; i < threads; ++i) {
        makers.emplace_back(QThread::create([&, i] {
            for (int j = 0; j < each; ++j) {
                const int size = 1 + i * each + j;
                m_session
                    .dataTaskWithRequest(request(QStringLiteral("/binary?size=%1").arg(size)),
                                         [&, size](auto data, auto, auto error) {
                                             wrong += error || data->size() != size;
                                             done.release();
                                         })
                    ->resume();
            }
        }));
        makers.back()->start();
    }
    QVERIFY(done.tryAcquire(threads * each, 30'000));
    for (auto &maker : makers)
        maker->wait();
    QCOMPARE(wrong.load(), 0);
}

void SessionTest::sessionMayGoBeforeItsTasks()
{
    QSemaphore done;
    NSURLSessionDataTaskPtr task;
    {
        NSURLSession passing;
        task = passing.dataTaskWithRequest(request(QStringLiteral("/slow?ms=50")),
                                           [&](auto, auto response, auto) {
                                               if (response)
                                                   done.release();
                                           });
    }
    task->resume();
    QVERIFY(done.tryAcquire(1, 10'000));
}

QTEST_GUILESS_MAIN(SessionTest)
#include "SessionTest.moc"
