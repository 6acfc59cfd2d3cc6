#include "Tests/NetworkPlays.h"

#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXNetworkCapture.h"

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <algorithm>

using namespace NetworkPlays;

namespace {

using Play = NetworkStage::Play;
using Transport = ScriptedServer::Transport;

/// A host's own manager, which has a say in every request and reply.
template<typename Base>
class HostManager : public Base
{
protected:
    QNetworkReply *createRequest(QNetworkAccessManager::Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        QNetworkRequest changed = request;
        changed.setRawHeader("X-Host", "1");
        QNetworkReply *const reply = Base::createRequest(operation, changed, body);
        reply->setProperty("host", 1);
        return reply;
    }
};

class OneLineManager final : public HostManager<QNetworkAccessManager>
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

QNetworkAccessManager *captured(Manager manager)
{
    switch (manager) {
    case Manager::Itself:
        break;
    case Manager::Subclass:
        return new HostManager<QXNetworkAccessManager>;
    case Manager::Wrapped:
        return new QXCapturing<HostManager<QNetworkAccessManager>>;
    case Manager::OneLine:
        return new OneLineManager;
    }
    return new QXNetworkAccessManager;
}

QNetworkAccessManager *qts(Manager manager)
{
    if (manager == Manager::Itself)
        return new QNetworkAccessManager;
    return new HostManager<QNetworkAccessManager>;
}

QByteArray difference(const QByteArrayList &expected, const QByteArrayList &actual)
{
    const auto split = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    const auto at = std::max<qsizetype>(0, split.first - expected.begin() - 4);
    return "A host of Qt's manager sees\n    " + expected.mid(at, 10).join("\n    ") +
           "\nand the other host sees\n    " + actual.mid(at, 10).join("\n    ");
}

} // namespace

class NetworkComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostNoticesNoDifference_data()
    {
        QTest::addColumn<Play>("play");
        QTest::addColumn<Manager>("manager");
        QTest::addColumn<Transport>("transport");
        addAnswers();
        addRequests();
        addReaders();
        addInterventions();
        addRedirects();
        addCredentials();
        addCertificates();
        addCaches();
        addFailures();
        addLives();
        addFlows();
    }

    void hostNoticesNoDifference()
    {
        QFETCH(Play, play);
        QFETCH(Manager, manager);
        QFETCH(Transport, transport);
        QByteArrayList expected;
        QByteArrayList onThread;
        const std::unique_ptr<QThread> ofQt(
            QThread::create([&] { expected = NetworkStage::perform(qts(manager), play, transport); }));
        const std::unique_ptr<QThread> ours(
            QThread::create([&] { onThread = NetworkStage::perform(captured(manager), play, transport); }));
        ofQt->start();
        const auto actual = NetworkStage::perform(captured(manager), play, transport);
        ofQt->wait();
        ours->start();
        ours->wait();
        for (QByteArrayList seen : {actual, onThread}) {
            // Qt works on two threads, so that a few plays have a second, rare end. A difference is one that
            // stays.
            for (int attempts = 6; attempts > 0 && seen != expected; --attempts) {
                expected = NetworkStage::perform(qts(manager), play, transport);
                if (seen != expected)
                    seen = NetworkStage::perform(captured(manager), play, transport);
            }
            if (seen != expected)
                QFAIL(difference(expected, seen).constData());
        }
        QVERIFY2(!expected.contains("WAITED IN VAIN"), expected.join('\n').constData());
    }
};

QTEST_GUILESS_MAIN(NetworkComparisonTest)

#include "NetworkComparisonTest.moc"
