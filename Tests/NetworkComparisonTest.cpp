#include "Tests/NetworkPlays.h"

#include "Quorvix/QXNetworkAccessManager.h"

#include <QtTest/QTest>

#include <algorithm>

using namespace NetworkPlays;

namespace {

using Ours = QXNetworkAccessManager;
using Play = NetworkStage::Play;
using Transport = ScriptedServer::Transport;

/// A host's own manager, which has a say in every request and reply.
template<typename Base>
class HostManager final : public Base
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

template<typename Base>
QByteArrayList perform(const Play &play, Manager manager, Transport transport)
{
    if (manager == Manager::Itself)
        return NetworkStage::perform(new Base, play, transport);
    return NetworkStage::perform(new HostManager<Base>, play, transport);
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
        const QByteArrayList actual = perform<Ours>(play, manager, transport);
        // A few plays have more than one end, because Qt works on two threads and repeats requests.
        QByteArrayList expected;
        for (int attempts = 8; attempts > 0 && actual != expected; --attempts)
            expected = perform<QNetworkAccessManager>(play, manager, transport);
        if (actual != expected)
            QFAIL(difference(expected, actual).constData());
        QVERIFY2(!expected.contains("WAITED IN VAIN"), expected.join('\n').constData());
    }
};

QTEST_GUILESS_MAIN(NetworkComparisonTest)

#include "NetworkComparisonTest.moc"
