#include <Quorvix/Platform/NSURLSession.h>
#include <Quorvix/QXRequestRecorder.h>
#include <Quorvix/QXSessionHook.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QTest>

#include <cstdlib>

using namespace Quorvix;
using namespace Qt::StringLiterals;

/// A program without a screen, which links the core alone.
class CoreHostTest : public QObject
{
    Q_OBJECT

public:
    std::optional<QByteArray> early;

private Q_SLOTS:
    void taskWaitsForTheApplication();
    void writesAnArchiveAtItsEnd_data();
    void writesAnArchiveAtItsEnd();
    void mayExitWithoutDestroyingItsApplication();
    void loadsNothingOfAScreen();
};

namespace {

/// Answers every request with "hello", except those for "silent", or none at all.
class Greeter
{
public:
    explicit Greeter(bool answers = true)
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this, answers] {
            QTcpSocket *const connection = m_server.nextPendingConnection();
            QObject::connect(connection, &QTcpSocket::readyRead, connection, [connection, answers] {
                const QByteArray request = connection->readAll();
                if (request.endsWith("\r\n\r\n") && !request.contains("/silent") && answers)
                    connection->write(
                        "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 5\r\n\r\nhello");
            });
        });
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("no port is free");
    }

    [[nodiscard]] QUrl url(const QString &path) const
    {
        return QUrl(u"http://127.0.0.1:%1/%2"_s.arg(QString::number(m_server.serverPort()), path));
    }

private:
    QTcpServer m_server;
};

} // namespace

void CoreHostTest::taskWaitsForTheApplication()
{
    QTRY_COMPARE(early, QByteArray("early"));
    const auto &traces = QXRequestRecorder::shared().requests();
    QCOMPARE(traces.size(), 1);
    QVERIFY(traces[0].duration);
    QXRequestRecorder::shared().clear();
}

void CoreHostTest::writesAnArchiveAtItsEnd_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("file");
    for (const QString &program : QStringLiteral(QUORVIX_ARCHIVE_HOSTS).split(u'|', Qt::SkipEmptyParts)) {
        const QString name = program.section(u'.', -1);
        for (const QString &end : {u"return"_s, u"exit"_s, u"leak"_s, u"static"_s})
            QTest::newRow(qPrintable(name + u' ' + end)) << program << end << u"a.har"_s << u"a.har"_s;
        QTest::newRow(qPrintable(name + u" process"_s))
            << program << u"exit"_s << u"%p-%p.har"_s << u"%1-%1.har"_s;
        QTest::newRow(qPrintable(name + u" empty"_s)) << program << u"exit"_s << QString() << QString();
        QTest::newRow(qPrintable(name + u" no folder"_s))
            << program << u"exit"_s << u"none/a.har"_s << QString();
    }
}

void CoreHostTest::writesAnArchiveAtItsEnd()
{
    QFETCH(const QString, program);
    QFETCH(const QString, end);
    QFETCH(const QString, variable);
    QFETCH(const QString, file);
    const Greeter server;
    const QTemporaryDir folder;
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QUORVIX_HAR"_s, variable);
    host.setProcessEnvironment(environment);
    host.setWorkingDirectory(folder.path());
    host.start(program, {server.url(QString()).toString(), end});
    QVERIFY(host.waitForStarted());
    const qint64 processId = host.processId();
    QTRY_COMPARE_WITH_TIMEOUT(host.state(), QProcess::NotRunning, 30'000); // the server is here
    QCOMPARE(host.readAllStandardError(), QByteArray());
    QCOMPARE(host.exitStatus(), QProcess::NormalExit);
    QCOMPARE(host.exitCode(), 0);

    const QStringList files = QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
    const QString expected = file.contains(u"%1"_s) ? file.arg(processId) : file;
    QCOMPARE(files.join(u','), expected);
    if (expected.isEmpty())
        return;
    QFile archive(folder.filePath(expected));
    QVERIFY(archive.open(QFile::ReadOnly));
    const QByteArray text = archive.readAll();
    QVERIFY(!text.contains("secret") && text.contains("[redacted]"));
    QStringList entries;
    for (const QJsonValue entry : QJsonDocument::fromJson(text)[u"log"][u"entries"].toArray())
        entries += QUrl(entry[u"request"][u"url"].toString()).path() + u' ' +
                   QString::number(entry[u"response"][u"status"].toInt());
    entries.sort();
    QCOMPARE(entries, QStringList({u"/first 200"_s, u"/session 200"_s, u"/silent 0"_s, u"/thread 200"_s}));
}

/// Many hosts never destroy their application object: they end with exit().
static int exitInTheMiddle(int argc, char *argv[])
{
    const auto *const application = new QCoreApplication(argc, argv);
    QXSessionHook::install();
    const URLRequest request(QUrl(QString::fromLocal8Bit(argv[1])));
    for (int i = 0; i < 200; ++i)
        NSURLSession::shared().dataTaskWithRequest(request, [](auto, auto, auto) {})->resume();
    QTimer::singleShot(QString::fromLocal8Bit(argv[2]).toInt(), [] { std::exit(0); });
    return application->exec();
}

void CoreHostTest::mayExitWithoutDestroyingItsApplication()
{
    const Greeter server(false);
    const QString url = server.url(QString()).toString();
    for (int delay = 0; delay < 10; ++delay) {
        QProcess host;
        host.setProcessChannelMode(QProcess::ForwardedChannels);
        host.start(QCoreApplication::applicationFilePath(), {url, QString::number(delay)});
        QVERIFY(host.waitForFinished());
        QCOMPARE(host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(host.exitCode(), 0);
    }
}

void CoreHostTest::loadsNothingOfAScreen()
{
    QFile maps(u"/proc/self/maps"_s);
    if (!maps.open(QFile::ReadOnly))
        QSKIP("This system does not tell which libraries are loaded");
    const QByteArray loaded = maps.readAll();
    QVERIFY(loaded.contains("libQt6Network"));
    for (const char *const library : {"libQt6Gui", "libQt6Qml", "libQt6Quick", "libQuorvix.so"})
        QVERIFY2(!loaded.contains(library), library);
}

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrncmp(argv[1], "http", 4) == 0)
        return exitInTheMiddle(argc, argv);
    CoreHostTest test;
    QXSessionHook::install();
    NSURLSession::shared()
        .dataTaskWithRequest(URLRequest(QUrl(u"data:text/plain,early"_s)),
                             [&test](auto data, auto, auto) { test.early = data; })
        ->resume();
    const QCoreApplication application(argc, argv);
    return QTest::qExec(&test, argc, argv);
}

#include "CoreHostTest.moc"
