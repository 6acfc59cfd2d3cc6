#pragma once

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QTest>

#include <optional>

/// One received request, byte for byte.
struct Arrival
{
    QByteArray method;
    QByteArray target;
    QByteArrayList headers;
    QByteArray body;
};

/// The request, or nothing until all of it has arrived.
inline std::optional<Arrival> readArrival(const QByteArray &bytes)
{
    const qsizetype headSize = bytes.indexOf("\r\n\r\n");
    if (headSize < 0)
        return std::nullopt;
    // Splits at CR LF only, not at a single line feed, so that no received byte is lost.
    Arrival arrival;
    QByteArray head = bytes.first(headSize).replace("\r\n", QByteArray(1, '\0'));
    arrival.headers = head.split('\0');
    const QByteArrayList requestLine = arrival.headers.takeFirst().split(' ');
    arrival.method = requestLine.value(0);
    arrival.target = requestLine.value(1);
    qsizetype length = 0;
    for (const QByteArray &header : std::as_const(arrival.headers)) {
        if (header.startsWith("Content-Length: "))
            length = header.sliced(16).toLongLong();
    }
    arrival.body = bytes.sliced(headSize + 4);
    return arrival.body.size() < length ? std::nullopt : std::optional(arrival);
}

/// Runs commands in a shell of this machine, and records the requests that they send to the runner's server.
class CommandRunner final
{
public:
    CommandRunner()
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            QObject::connect(
                socket, &QTcpSocket::readyRead, socket, [this, socket, bytes = QByteArray()]() mutable {
                    bytes += socket->readAll();
                    if (const auto arrival = readArrival(bytes)) {
                        m_arrivals += *arrival;
                        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
                        socket->disconnectFromHost();
                    }
                });
        });
    }

    [[nodiscard]] bool start() { return m_home.isValid() && m_server.listen(QHostAddress::LocalHost); }
    [[nodiscard]] QString url(const QString &path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path);
    }

    /// Runs the command in a shell and returns the requests that have arrived when the shell ends.
    QList<Arrival> run(const QString &shell, const QString &command)
    {
        m_arrivals.clear();
        QProcess process;
        // Excludes the settings of the user who runs the tests, and any proxy.
        process.setEnvironment(
            {QStringLiteral("PATH=") + qEnvironmentVariable("PATH"), QStringLiteral("HOME=") + m_home.path(),
             QStringLiteral("CURL_HOME=") + m_home.path(), QStringLiteral("LC_ALL=C.UTF-8")});
        process.setWorkingDirectory(m_home.path());
        process.start(shell, QStringList());
        process.write(command.toUtf8() + '\n');
        process.closeWriteChannel();
        if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 30'000))
            process.kill();
        m_exitCode = process.exitCode();
        m_complaints = process.readAllStandardError();
        return m_arrivals;
    }

    [[nodiscard]] int exitCode() const { return m_exitCode; }
    /// The error output of the shell and of curl.
    [[nodiscard]] QByteArray complaints() const { return m_complaints; }
    /// The working directory and home folder of the commands. It is empty.
    [[nodiscard]] QDir home() const { return QDir(m_home.path()); }

private:
    QTcpServer m_server;
    QTemporaryDir m_home;
    QList<Arrival> m_arrivals;
    int m_exitCode = 0;
    QByteArray m_complaints;
};
