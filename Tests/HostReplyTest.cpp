#include "Examples/DemoServer.h"

#include "Tests/NetworkKit.h"

#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXNetworkAccessManagerFactory.h"
#include "Quorvix/QXNetworkCapture.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryFile>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QNetworkReply>
#include <QtQml/QQmlEngine>
#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

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

/// Hands out one manager that it keeps.
class KeepingFactory : public QQmlNetworkAccessManagerFactory
{
public:
    QNetworkAccessManager *create(QObject *) override { return &manager; }

    HostManager manager;
};

enum class Habit { OpensLate, RandomAccess, FinishesLate };

/// A reply as hosts write them, which reports no headers. All have the same address, one after the other.
class CannedReply : public QNetworkReply
{
public:
    CannedReply(const QNetworkRequest &request, Habit habit) : m_habit(habit)
    {
        setUrl(request.url());
        if (m_habit != Habit::OpensLate)
            open(ReadOnly);
        QMetaObject::invokeMethod(
            this, [this] { arrive(); }, Qt::QueuedConnection);
    }

    static void *operator new(std::size_t) { return place; }
    static void operator delete(void *) {}

    void abort() override {}
    [[nodiscard]] bool isSequential() const override { return m_habit != Habit::RandomAccess; }
    [[nodiscard]] qint64 size() const override
    {
        return isSequential() ? QNetworkReply::size() : m_bytes.size();
    }
    [[nodiscard]] qint64 bytesAvailable() const override
    {
        return QNetworkReply::bytesAvailable() + (isSequential() ? m_bytes.size() - m_position : 0);
    }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        if (!isSequential())
            m_position = pos();
        const QByteArray read = m_bytes.mid(m_position, maxSize);
        std::copy(read.begin(), read.end(), data);
        m_position += read.size();
        return read.isEmpty() ? -1 : read.size();
    }

private:
    void arrive()
    {
        open(ReadOnly);
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute, 200);
        Q_EMIT readyRead();
        setFinished(m_habit != Habit::FinishesLate);
        Q_EMIT finished();
        setFinished(true);
    }

    alignas(std::max_align_t) static inline std::byte place[256];

    const Habit m_habit;
    const QByteArray m_bytes = "canned bytes"_ba;
    qint64 m_position = 0;
};

class CannedManager : public QNetworkAccessManager
{
public:
    explicit CannedManager(Habit habit) : m_habit(habit) {}

protected:
    QNetworkReply *createRequest(Operation, const QNetworkRequest &request, QIODevice *) override
    {
        return new CannedReply(request, m_habit);
    }

private:
    const Habit m_habit;
};

} // namespace

/// Managers and replies of hosts' own.
class HostReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.start()); }
    void init() { startAfresh(); }
    void capturesManagersOfTheHost_data();
    void capturesManagersOfTheHost();
    void capturesOnce();
    void repliesGoWithThoseOfTheManager_data();
    void repliesGoWithThoseOfTheManager();
    void newRepliesMayHaveOldAddresses();
    void namesTheReplyOfTheHost();
    void leavesManagersToTheirOwner();
    void deliversRepliesOfTheHost_data();
    void deliversRepliesOfTheHost();

private:
    [[nodiscard]] QNetworkRequest request(const QString &path) const
    {
        return QNetworkRequest(m_server.url(path));
    }

    DemoServer m_server;
};

void HostReplyTest::capturesManagersOfTheHost_data()
{
    using Make = std::function<QNetworkAccessManager *(QObject *)>;
    QTest::addColumn<Make>("make");
    QTest::newRow("template") << Make([](QObject *parent) { return new QXCapturing<HostManager>(parent); });
    QTest::newRow("one line") << Make([](QObject *parent) {
        auto *const manager = new CapturingHostManager;
        manager->setParent(parent);
        return manager;
    });
}

void HostReplyTest::capturesManagersOfTheHost()
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

void HostReplyTest::capturesOnce()
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

void HostReplyTest::repliesGoWithThoseOfTheManager_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("at once") << false;
    QTest::newRow("held") << true;
}

void HostReplyTest::repliesGoWithThoseOfTheManager()
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

void HostReplyTest::newRepliesMayHaveOldAddresses()
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

void HostReplyTest::namesTheReplyOfTheHost()
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

void HostReplyTest::leavesManagersToTheirOwner()
{
    KeepingFactory kept;
    for (int round = 0; round < 2; ++round) {
        QQmlEngine engine;
        engine.setNetworkAccessManagerFactory(&kept);
        QXNetworkAccessManagerFactory::install(engine);
        QXNetworkAccessManagerFactory::install(engine); // once is enough
        QNetworkReply *const reply = engine.networkAccessManager()->get(request(u"/echo"_s));
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(newest().headers->value(u"X-Host"_s), u"yes"_s);
        QCOMPARE(recorder().requests().size(), round + 1);
    }
    QVERIFY(!kept.manager.parent());
}

void HostReplyTest::deliversRepliesOfTheHost_data()
{
    QTest::addColumn<Habit>("habit");
    QTest::newRow("opens late") << Habit::OpensLate;
    QTest::newRow("random access") << Habit::RandomAccess;
    QTest::newRow("finishes late") << Habit::FinishesLate;
}

void HostReplyTest::deliversRepliesOfTheHost()
{
    QFETCH(Habit, habit);
    QXCapturing<CannedManager> manager(habit);
    const std::unique_ptr<QNetworkReply> reply(manager.get(request(u"/canned"_s)));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    int status = 0;
    connect(reply.get(), &QNetworkReply::readyRead, this,
            [&] { status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); });
    QVERIFY(finished.wait());
    QTRY_VERIFY(reply->isFinished());
    QVERIFY(reply->isOpen());
    QCOMPARE(status, 200);
    QCOMPARE(reply->size(), 12);
    QCOMPARE(reply->bytesAvailable(), 12);
    QCOMPARE(reply->isSequential(), habit != Habit::RandomAccess);
    if (habit == Habit::RandomAccess) {
        QVERIFY(reply->seek(7));
        QCOMPARE(reply->read(3), "byt"_ba);
        QVERIFY(reply->reset());
    }
    QCOMPARE(reply->readAll(), "canned bytes"_ba);
    QCOMPARE(newest().response->body, "canned bytes"_ba);
}

QTEST_GUILESS_MAIN(HostReplyTest)
#include "HostReplyTest.moc"
