#pragma once

#include "Benchmarks/Contest.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtCore/QProcess>
#include <QtCore/QSocketNotifier>
#include <QtCore/QUrl>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <ctime>
#include <unistd.h>

/// A server of HTTP in a process of its own, so that its time is not counted as the host's.
namespace LoopbackServer {

/// The body that the server sends for "/{size}".
inline QByteArray bodyOf(qsizetype size)
{
    QByteArray body(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        body[i] = char('a' + (i * 7 + i / 251) % 26);
    return body;
}

/// Answers "GET /{size}" with a body of that size.
inline void serve(QTcpSocket &socket)
{
    static QHash<QByteArray, QByteArray> answers;
    while (socket.canReadLine()) {
        const QByteArray line = socket.readLine();
        if (!line.startsWith("GET /"))
            continue;
        QByteArray &answer = answers[line.split(' ').at(1)];
        if (answer.isEmpty()) {
            const QByteArray body = bodyOf(line.split(' ').at(1).mid(1).toLongLong());
            answer = "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nServer: benchmark\r\n"
                     "Content-Length: " +
                     QByteArray::number(body.size()) + "\r\n\r\n" + body;
        }
        socket.write(answer);
    }
}

/// Prints its port and serves until its standard input is closed, which the end of the other process does.
inline int run()
{
    QTcpServer server;
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&] {
        QTcpSocket *const socket = server.nextPendingConnection();
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] { serve(*socket); });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    Contest::require(server.listen(QHostAddress::LocalHost), "the server has no port");
    std::printf("%d\n", int(server.serverPort()));
    std::fflush(stdout);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

/// The next line that a process prints.
inline QByteArray readLine(QProcess &process)
{
    while (!process.canReadLine())
        Contest::require(process.waitForReadyRead(60'000), "a process does not answer");
    return process.readLine().trimmed();
}

/// The numbers of the next line that a process prints.
inline std::vector<double> readNumbers(QProcess &process, qsizetype count)
{
    const QList<QByteArray> words = readLine(process).split(' ');
    Contest::require(words.size() == count, "a host has no figures");
    std::vector<double> numbers;
    for (const QByteArray &word : words)
        numbers.push_back(word.toDouble());
    return numbers;
}

/// Starts this program with these arguments; its errors are shown.
inline void start(QProcess &process, const QStringList &arguments)
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), arguments);
}

/// Starts this program with "--server", for which it must call run(), and returns the server's address.
inline QUrl startIn(QProcess &process)
{
    start(process, {QStringLiteral("--server")});
    QUrl address(QStringLiteral("http://127.0.0.1"));
    address.setPort(int(readLine(process).toUInt()));
    return address;
}

/// Ends a process that waits for its standard input.
inline void stop(QProcess &process)
{
    process.closeWriteChannel();
    Contest::require(process.waitForFinished(60'000) && process.exitCode() == 0, "a process failed");
}

/// User and system time of all threads of this process, in microseconds.
inline double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

} // namespace LoopbackServer
