#include "Examples/DemoServer.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXExchange.h"
#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXNetworkAccessManagerFactory.h"
#include "Quorvix/QXNetworkCapture.h"
#include "Quorvix/QXRequestRecorder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryFile>
#include <QtCore/QThread>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkCookie>
#include <QtNetwork/QNetworkCookieJar>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtQml/QQmlEngine>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <atomic>
#include <thread>

using namespace Quorvix;

using namespace std::chrono_literals;

using namespace Qt::StringLiterals;

namespace {

QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

/// Answers each connection with the next piece whenever the test says so.
class Tap final
{
public:
    Tap()
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *const socket = m_server.nextPendingConnection();
            m_sockets.append(socket);
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                m_received += socket->readAll();
                if (!first.isEmpty() && m_received.contains("\r\n\r\n"))
                    socket->write(first.takeFirst());
            });
        });
        m_server.listen(QHostAddress::LocalHost);
    }

    [[nodiscard]] QUrl url() const { return QUrl(u"http://127.0.0.1:%1/tap"_s.arg(m_server.serverPort())); }
    void write(const QByteArray &bytes) { m_sockets.constLast()->write(bytes); }

    /// The responses that are sent when requests arrive.
    QByteArrayList first;

private:
    QTcpServer m_server;
    QList<QTcpSocket *> m_sockets;
    QByteArray m_received;
};

/// A manager as hosts write them: it connects in its constructor and changes requests.
class HostManager : public QNetworkAccessManager
{
public:
    explicit HostManager(QObject *parent = nullptr) : QNetworkAccessManager(parent)
    {
        connect(this, &QNetworkAccessManager::authenticationRequired, this,
                [](QNetworkReply *, QAuthenticator *authenticator) {
                    authenticator->setUser(u"user"_s);
                    authenticator->setPassword(u"password"_s);
                });
    }

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &original,
                                 QIODevice *body) override
    {
        QNetworkRequest request = original;
        request.setRawHeader("X-Host", "yes");
        return QNetworkAccessManager::createRequest(operation, request, body);
    }
};

class CapturingHostManager : public HostManager
{
protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        return QXNetworkCapture::capture(this, operation, request, body, [&](QIODevice *upload) {
            return HostManager::createRequest(operation, request, upload);
        });
    }
};

/// Its replies need no owner.
class TidyManager : public QNetworkAccessManager
{
public:
    QPointer<QNetworkReply> made;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        made = QNetworkAccessManager::createRequest(operation, request, body);
        connect(made, &QNetworkReply::finished, made, &QObject::deleteLater);
        return made;
    }
};

/// A reply that a host makes up, and that reports no headers.
class MockReply : public QNetworkReply
{
public:
    explicit MockReply(QObject *parent) : QNetworkReply(parent)
    {
        setOpenMode(ReadOnly);
        QMetaObject::invokeMethod(
            this,
            [this] {
                setAttribute(QNetworkRequest::HttpStatusCodeAttribute, 200);
                Q_EMIT readyRead();
                setFinished(true);
                Q_EMIT finished();
            },
            Qt::QueuedConnection);
    }

    void abort() override {}
    qint64 readData(char *, qint64) override { return -1; }
};

class MockManager : public QNetworkAccessManager
{
protected:
    QNetworkReply *createRequest(Operation, const QNetworkRequest &, QIODevice *) override
    {
        return new MockReply(this);
    }
};

/// Hands out one manager that it keeps.
class KeepingFactory : public QQmlNetworkAccessManagerFactory
{
public:
    QNetworkAccessManager *create(QObject *) override { return &manager; }

    HostManager manager;
};

class HostFactory : public QQmlNetworkAccessManagerFactory
{
public:
    QNetworkAccessManager *create(QObject *parent) override { return new HostManager(parent); }
};

} // namespace

class NetworkCaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.start()); }
    void init();
    void recordsTheExchangeAsItWent_data();
    void recordsTheExchangeAsItWent();
    void recordsHowItEnded_data();
    void recordsHowItEnded();
    void recordsBodiesFromDevices();
    void recordsTheBodyOfASynchronousRequest();
    void recordsHeadersThatQtAdds();
    void keepsNoMoreThanTheBody();
    void localUrlsAreQtsOwn();
    void capturesManagersOfTheHost_data();
    void capturesManagersOfTheHost();
    void capturesOnce();
    void repliesGoWithThoseOfTheManager_data();
    void repliesGoWithThoseOfTheManager();
    void newRepliesMayHaveOldAddresses();
    void mirrorsRepliesThatReportNoHeaders();
    void leavesManagersToTheirOwner();
    void namesTheReplyOfTheHost();
    void worksOnManyThreads();
    void heldReplyIsOpenUntilItIsReleased();
    void releasedReplyCanBeEndedInSlots_data();
    void releasedReplyCanBeEndedInSlots();
    void showsWhatHasArrivedSoFar_data();
    void showsWhatHasArrivedSoFar();
    void recordsAnyOtherClient();
    void replyEndsAfterItsThread();

private:
    [[nodiscard]] QNetworkRequest request(const QString &path) const
    {
        return QNetworkRequest(m_server.url(path));
    }
    /// The newest trace, when it has ended.
    static QXRequestTrace newest()
    {
        const bool ended = QTest::qWaitFor([] {
            const QXTraceList traces = recorder().requests();
            return !traces.isEmpty() && traces[0].duration.has_value();
        });
        if (!ended)
            qFatal("no exchange was recorded");
        return recorder().requests()[0];
    }

    DemoServer m_server;
};

void NetworkCaptureTest::init()
{
    QXBreakpointStore::shared().setRules({});
    // Each test begins after the cooldown of the one before.
    static auto late = 0h;
    ++late;
    QXBreakpointCenter::shared().setClock([] { return std::chrono::steady_clock::now() + late; });
    recorder().clear();
}

void NetworkCaptureTest::recordsTheExchangeAsItWent_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("verb");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("lastPath");

    QTest::newRow("GET") << u"/api/v1/products"_s << "GET"_ba << QByteArray() << 200 << u"/api/v1/products"_s;
    QTest::newRow("not found") << u"/nowhere"_s << "GET"_ba << QByteArray() << 404 << u"/nowhere"_s;
    QTest::newRow("POST") << u"/echo"_s << "POST"_ba
                          << "a=1"_ba << 200 << u"/echo"_s;
    QTest::newRow("custom verb") << u"/echo"_s << "PATCH"_ba
                                 << "{}"_ba << 200 << u"/echo"_s;
    QTest::newRow("gzip") << u"/api/v1/articles"_s << "GET"_ba << QByteArray() << 200
                          << u"/api/v1/articles"_s;
    QTest::newRow("redirects") << u"/redirect/2"_s << "GET"_ba << QByteArray() << 200 << u"/redirect/0"_s;
    QTest::newRow("10 MB") << u"/api/v1/export"_s << "GET"_ba << QByteArray() << 200 << u"/api/v1/export"_s;
}

void NetworkCaptureTest::recordsTheExchangeAsItWent()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, verb);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(QString, lastPath);
    QXNetworkAccessManager manager;

    QNetworkRequest sent = request(path);
    sent.setRawHeader("X-Asked", "twice");
    const std::unique_ptr<QNetworkReply> reply(verb == "POST" ? manager.post(sent, body)
                                                              : manager.sendCustomRequest(sent, verb, body));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait(20'000));
    const QByteArray received = reply->readAll();

    const QXRequestTrace trace = newest();
    QCOMPARE(recorder().requests().size(), 1);
    QCOMPARE(trace.url, m_server.url(path));
    QCOMPARE(trace.method, QString::fromUtf8(verb));
    QCOMPARE(trace.headers->value(u"X-Asked"_s), u"twice"_s);
    QCOMPARE(trace.body.value_or(QByteArray()), body);
    QVERIFY(!trace.error);
    QVERIFY(trace.response);
    QCOMPARE(trace.response->statusCode, status);
    QVERIFY(!received.isEmpty());
    QVERIFY(trace.response->body == received);
    QCOMPARE(reply->url().path(), lastPath);
    QVERIFY(*trace.duration > 0);
}

void NetworkCaptureTest::recordsHowItEnded_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<qint64>("code");
    QTest::addColumn<bool>("hasResponse");

    QTest::newRow("aborted before the response") << u"abort"_s << qint64(NSURLErrorCancelled) << false;
    QTest::newRow("aborted within the body") << u"abort later"_s << qint64(NSURLErrorCancelled) << true;
    QTest::newRow("closed") << u"close later"_s << qint64(NSURLErrorCancelled) << true;
    QTest::newRow("destroyed") << u"destroy later"_s << qint64(NSURLErrorCancelled) << true;
    QTest::newRow("destroyed with its manager") << u"manager later"_s << qint64(NSURLErrorCancelled) << true;
    QTest::newRow("time-out") << u"time-out later"_s << qint64(NSURLErrorTimedOut) << true;
    QTest::newRow("refused") << u"refused"_s << qint64(NSURLErrorCannotConnectToHost) << false;
}

void NetworkCaptureTest::recordsHowItEnded()
{
    QFETCH(QString, how);
    QFETCH(qint64, code);
    QFETCH(bool, hasResponse);
    Tap tap;
    tap.first = {"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n0123456789"};
    auto manager = std::make_unique<QXNetworkAccessManager>();
    QUrl url = tap.url();
    if (how == u"refused"_s)
        url.setPort(1);
    QNetworkRequest sent(url);
    if (how.startsWith(u"time-out"_s))
        sent.setTransferTimeout(300);
    QPointer<QNetworkReply> reply = manager->get(sent);

    if (how.endsWith(u"later"_s)) {
        QTRY_COMPARE(reply->bytesAvailable(), 10);
        QCOMPARE(reply->read(4), "0123"_ba);
    }
    if (how.startsWith(u"abort"_s))
        reply->abort();
    else if (how.startsWith(u"close"_s))
        reply->close();
    else if (how.startsWith(u"destroy"_s))
        delete reply;
    else if (how.startsWith(u"manager"_s))
        manager.reset();

    const QXRequestTrace trace = newest();
    QVERIFY(trace.error);
    QCOMPARE(trace.error->code, code);
    QCOMPARE(trace.response.has_value(), hasResponse);
    // What had arrived is there, whether or not the host has read it.
    if (hasResponse)
        QCOMPARE(trace.response->body, "0123456789"_ba);
}

void NetworkCaptureTest::recordsBodiesFromDevices()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(QByteArray(100'000, 'x') + "end");
    file.seek(10);
    QXNetworkAccessManager manager;

    QNetworkRequest sent = request(u"/moved/307"_s); // sends the body twice
    sent.setHeader(QNetworkRequest::ContentTypeHeader, u"text/plain"_s);
    const std::unique_ptr<QNetworkReply> reply(manager.put(sent, &file));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait());
    QCOMPARE(reply->error(), QNetworkReply::NoError);

    const QXRequestTrace trace = newest();
    QCOMPARE(trace.body->size(), 99'993);
    QVERIFY(trace.body->endsWith("xend"));
    QVERIFY(trace.body->capacity() <= trace.body->size() + trace.body->size() / 8);
    QCOMPARE(trace.headers->value(u"Content-Type"_s), u"text/plain"_s);
}

void NetworkCaptureTest::recordsTheBodyOfASynchronousRequest()
{
    QXNetworkAccessManager manager;
    QNetworkRequest sent = request(u"/echo"_s);
    sent.setHeader(QNetworkRequest::ContentTypeHeader, u"text/plain"_s);
    sent.setAttribute(QNetworkRequest::SynchronousRequestAttribute, true);
    const std::unique_ptr<QNetworkReply> reply(manager.post(sent, "four"_ba));
    QVERIFY(reply->isFinished());
    QCOMPARE(newest().body, "four"_ba);
}

void NetworkCaptureTest::recordsHeadersThatQtAdds()
{
    QXNetworkAccessManager manager;
    manager.cookieJar()->setCookiesFromUrl({QNetworkCookie("flavour", "oat")}, m_server.url());
    QNetworkRequest sent = request(u"/echo"_s);
    sent.setHeader(QNetworkRequest::ContentTypeHeader, u"text/plain"_s);
    const std::unique_ptr<QNetworkReply> reply(manager.post(sent, "four"_ba));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait());

    const QXRequestTrace trace = newest();
    QCOMPARE(trace.headers->value(u"Cookie"_s), u"flavour=oat"_s);
    QCOMPARE(trace.headers->value(u"Content-Length"_s), u"4"_s);
}

void NetworkCaptureTest::keepsNoMoreThanTheBody()
{
    QXNetworkAccessManager manager;
    for (const QString &path : {u"/binary?size=189"_s, u"/binary?size=4000000"_s, u"/api/v1/articles"_s}) {
        const std::unique_ptr<QNetworkReply> reply(manager.get(request(path)));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        QVERIFY(finished.wait());
        const QXRequestTrace trace = newest();
        const qsizetype size = trace.response->body->size();
        QVERIFY2(trace.response->body->capacity() <= size + size / 8, qPrintable(path));
        recorder().clear();
    }
}

void NetworkCaptureTest::localUrlsAreQtsOwn()
{
    QXNetworkAccessManager manager;
    QNetworkAccessManager plain;
    for (const QString &url : {u"data:,hello"_s, u"file:///etc/hostname"_s, u"qrc:/none"_s, u"tel:1"_s}) {
        const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(QUrl(url))));
        const std::unique_ptr<QNetworkReply> bare(plain.get(QNetworkRequest(QUrl(url))));
        QCOMPARE(reply->metaObject()->className(), bare->metaObject()->className());
    }
    QTest::qWait(0);
    QVERIFY(recorder().requests().isEmpty());

    QXNetworkCapture::setIncludesLocalUrls(true);
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(QUrl(u"data:,hello"_s))));
    QXNetworkCapture::setIncludesLocalUrls(false);
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->readAll(), "hello"_ba);
    QCOMPARE(newest().url, QUrl(u"data:,hello"_s));
}

void NetworkCaptureTest::capturesManagersOfTheHost_data()
{
    using Make = std::function<QNetworkAccessManager *(QObject *)>;
    QTest::addColumn<Make>("make");
    QTest::newRow("template") << Make([](QObject *parent) { return new QXCapturing<HostManager>(parent); });
    QTest::newRow("one line") << Make([](QObject *parent) {
        auto *const manager = new CapturingHostManager;
        manager->setParent(parent);
        return manager;
    });
    QTest::newRow("factory of QML") << Make([](QObject *parent) {
        auto *const engine = new QQmlEngine(parent);
        static HostFactory factory;
        engine->setNetworkAccessManagerFactory(&factory);
        QXNetworkAccessManagerFactory::install(*engine);
        QXNetworkAccessManagerFactory::install(*engine); // once is enough
        return engine->networkAccessManager();
    });
}

void NetworkCaptureTest::capturesManagersOfTheHost()
{
    QFETCH(std::function<QNetworkAccessManager *(QObject *)>, make);
    QObject parent;
    QNetworkAccessManager *const manager = make(&parent);
    QSignalSpy finished(manager, &QNetworkAccessManager::finished);

    QNetworkReply *const reply = manager->post(request(u"/echo"_s), "body"_ba);
    QVERIFY(finished.wait());
    QCOMPARE(finished.constFirst().constFirst().value<QNetworkReply *>(), reply);
    QVERIFY(reply->readAll().toLower().contains("x-host")); // newer Qt sends names in lower case
    QCOMPARE(newest().headers->value(u"X-Host"_s), u"yes"_s);
    QCOMPARE(newest().body, "body"_ba);
    QCOMPARE(recorder().requests().size(), 1);
}

void NetworkCaptureTest::capturesOnce()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("body");
    file.seek(0);
    QXCapturing<QXNetworkAccessManager> manager;
    const std::unique_ptr<QNetworkReply> reply(manager.put(request(u"/echo"_s), &file));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait());
    QCOMPARE(newest().body, "body"_ba);
    QCOMPARE(recorder().requests().size(), 1);
}

void NetworkCaptureTest::repliesGoWithThoseOfTheManager_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("at once") << false;
    QTest::newRow("held") << true;
}

void NetworkCaptureTest::repliesGoWithThoseOfTheManager()
{
    QFETCH(bool, isHeld);
    auto &center = QXBreakpointCenter::shared();
    if (isHeld)
        QXBreakpointStore::shared().insert(*QXBreakpointKey::make(m_server.url(u"/echo"_s), u"GET"_s));
    QXCapturing<TidyManager> manager;
    const QPointer<QNetworkReply> reply(manager.get(request(u"/echo"_s)));
    QSignalSpy finished(reply, &QNetworkReply::finished);
    if (isHeld) {
        QTRY_VERIFY(center.activeBreakpoint());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(reply);
        center.continueActive();
    }
    QTRY_VERIFY(!reply);
    QCOMPARE(finished.count(), 1);
    QVERIFY(!manager.made);
    QVERIFY(!newest().error);
}

void NetworkCaptureTest::newRepliesMayHaveOldAddresses()
void NetworkCaptureTest::leavesManagersToTheirOwner()
{
    KeepingFactory kept;
    for (int round = 0; round < 2; ++round) {
        QQmlEngine engine;
        engine.setNetworkAccessManagerFactory(&kept);
        QXNetworkAccessManagerFactory::install(engine);
        QNetworkReply *const reply = engine.networkAccessManager()->get(request(u"/echo"_s));
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(newest().headers->value(u"X-Host"_s), u"yes"_s);
    }
    QVERIFY(!kept.manager.parent());
}

void NetworkCaptureTest::outlivesItsThread()
{
    Tap tap;
    QXCapturing<TidyManager> manager;
    std::vector<std::unique_ptr<QNetworkReply>> old;
    for (int i = 0; i < 20; ++i) {
        old.emplace_back(manager.get(QNetworkRequest(tap.url())));
        delete manager.made;
    }
    QStringList ids;
    for (int i = 0; i < 20; ++i) {
        manager.get(QNetworkRequest(tap.url()));
        ids += recorder().requests()[0].id;
    }
    old.clear();
    for (const QString &id : ids)
        QVERIFY(recorder().refresh(id));
}

void NetworkCaptureTest::mirrorsRepliesThatReportNoHeaders()
{
    QXCapturing<MockManager> manager;
    QNetworkReply *const reply = manager.get(request(u"/mock"_s));
    int status = 0;
    connect(reply, &QNetworkReply::readyRead, this,
            [&] { status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); });
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(status, 200);
}

void NetworkCaptureTest::namesTheReplyOfTheHost()
{
    Tap tap;
    const QByteArray refusal("HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"x\"\r\n"
                             "Content-Length: 0\r\n\r\n");
    tap.first = {refusal, "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"};
    QXNetworkAccessManager manager;
    QNetworkReply *asking = nullptr;
    connect(&manager, &QNetworkAccessManager::authenticationRequired, this,
            [&](QNetworkReply *reply, QAuthenticator *authenticator) {
                asking = reply;
                authenticator->setUser(u"user"_s);
            });
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(tap.url())));
    reply->setParent(this); // a host may own its replies
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(asking, reply.get());
    QCOMPARE(newest().response->statusCode, 200);
}

void NetworkCaptureTest::worksOnManyThreads()
{
    constexpr int threads = 4;
    constexpr int requests = 25;
    std::vector<std::unique_ptr<QThread>> running;
    for (int i = 0; i < threads; ++i) {
        running
            .emplace_back(QThread::create([this] {
                QXNetworkAccessManager manager;
                for (int n = 0; n < requests; ++n) {
                    const std::unique_ptr<QNetworkReply> reply(manager.get(request(u"/binary?size=1000"_s)));
                    QEventLoop loop;
                    connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
                    loop.exec();
                }
            }))
            ->start();
    }
    QTRY_COMPARE_WITH_TIMEOUT(recorder().findRequestsByStatusCode(200).size(), threads * requests, 20'000);
    for (const auto &thread : running)
        QVERIFY(thread->wait());
}

void NetworkCaptureTest::releasedReplyCanBeEndedInSlots_data()
{
    QTest::addColumn<QString>("slot");
    QTest::newRow("head") << u"meta"_s;
    QTest::newRow("body") << u"read"_s;
    QTest::newRow("error") << u"error"_s;
}

void NetworkCaptureTest::heldReplyIsOpenUntilItIsReleased()
{
    Tap tap;
    tap.first = {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"};
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(tap.url(), u"GET"_s));
    QXNetworkAccessManager manager;
    manager.setTransferTimeout(200);
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(tap.url())));
    QByteArray body;
    connect(reply.get(), &QNetworkReply::readyRead, this, [&] { body += reply->readAll(); });
    QTRY_VERIFY(QXBreakpointCenter::shared().activeBreakpoint());
    QVERIFY(reply->isOpen());
    QXBreakpointCenter::shared().continueActive();
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(body, "abc"_ba);
    QCOMPARE(reply->error(), QNetworkReply::OperationCanceledError);
    QVERIFY(!reply->isOpen());
}

/// The same happens without a breakpoint.
void NetworkCaptureTest::releasedReplyCanBeEndedInSlots()
{
    QFETCH(QString, slot);
    QStringList diaries[2];
    for (const bool isHeld : {false, true}) {
        if (isHeld)
            QXBreakpointStore::shared().insert(*QXBreakpointKey::make(m_server.url(u"/none"_s), u"GET"_s));
        QXNetworkAccessManager manager;
        QNetworkReply *const reply = manager.get(request(u"/none"_s));
        QStringList &diary = diaries[isHeld];
        const auto note = [&, reply](const QString &signal) {
            diary += u"%1 %2"_s.arg(signal).arg(reply->error());
            if (signal == slot)
                reply->abort();
            diary += u"%1 %2"_s.arg(reply->isOpen()).arg(reply->bytesAvailable());
        };
        connect(reply, &QNetworkReply::metaDataChanged, this, [&] { note(u"meta"_s); });
        connect(reply, &QNetworkReply::readyRead, this, [&] { note(u"read"_s); });
        connect(reply, &QNetworkReply::errorOccurred, this, [&] { note(u"error"_s); });
        connect(reply, &QNetworkReply::finished, this, [&] { note(u"finished"_s); });
        if (isHeld) {
            QTRY_VERIFY(QXBreakpointCenter::shared().activeBreakpoint());
            QXBreakpointCenter::shared().continueActive();
        }
        QTRY_VERIFY(reply->isFinished());
    }
    QCOMPARE(diaries[1], diaries[0]);
}

void NetworkCaptureTest::showsWhatHasArrivedSoFar_data()
{
    QTest::addColumn<qint64>("bufferSize");
    QTest::newRow("stream") << qint64(0);
    QTest::newRow("bounded, and nobody reads") << qint64(1000);
}

void NetworkCaptureTest::showsWhatHasArrivedSoFar()
{
    QFETCH(qint64, bufferSize);
    Tap tap;
    tap.first = {"HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\ndata: 1\n"};
    QXNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(tap.url())));
    reply->setReadBufferSize(bufferSize);
    QTRY_COMPARE(reply->bytesAvailable(), 8);
    const auto trace = [] {
        return recorder().requests()[0];
    };
    QVERIFY(!trace().response);

    QVERIFY(recorder().refresh(trace().id));
    QTRY_VERIFY(trace().response);
    QCOMPARE(trace().response->body, "data: 1\n"_ba);
    QVERIFY(!trace().duration);

    tap.write("data: 2\n");
    QTRY_COMPARE(reply->bytesAvailable(), 16);
    recorder().refresh(trace().id);
    QTRY_COMPARE(trace().response->body, "data: 1\ndata: 2\n"_ba);
    QCOMPARE(reply->readAll(), "data: 1\ndata: 2\n"_ba);
}

void NetworkCaptureTest::recordsAnyOtherClient()
{
    URLRequest sent(QUrl(u"https://example.org/other"_s));
    QString id;
    QThread *const thread = QThread::create([&] {
        QXExchange exchange(sent);
        id = exchange.id();
        sent.httpBody = "late"_ba;
        exchange.amend(sent);
        exchange.complete(NSHTTPURLResponse::create(*sent.url, 204, u"HTTP/1.1"_s, {}), QByteArray(""), {});
        const QXExchange dropped{URLRequest(QUrl(u"https://example.org/dropped"_s))};
    });
    thread->start();
    QVERIFY(thread->wait());
    delete thread;

    QCOMPARE(newest().error->code, qint64(NSURLErrorCancelled));
    const QXRequestTrace trace = recorder().requests()[1];
    QCOMPARE(trace.id, id);
    QCOMPARE(trace.body, "late"_ba);
    QCOMPARE(trace.response->statusCode, 204);
}

/// AddressSanitizer sees whether the thread has destroyed what the reply needs.
void NetworkCaptureTest::replyEndsAfterItsThread()
{
    Tap tap;
    tap.first = {"HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc",
                 "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"};
    std::atomic<bool> hasEnded = false;
    std::thread thread([&, url = tap.url()] {
        static thread_local QXNetworkAccessManager manager;
        for (int i = 0; i < 2; ++i) {
            const QNetworkReply *const reply = manager.get(QNetworkRequest(url));
            QEventLoop loop;
            connect(reply, i == 0 ? &QNetworkReply::finished : &QNetworkReply::readyRead, &loop,
                    &QEventLoop::quit);
            loop.exec();
        }
        hasEnded = true;
    });
    QTRY_VERIFY(hasEnded);
    thread.join();
    QCOMPARE(newest().error->code, qint64(NSURLErrorCancelled));
}

QTEST_GUILESS_MAIN(NetworkCaptureTest)
#include "NetworkCaptureTest.moc"
