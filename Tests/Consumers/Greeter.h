#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QUrl>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <cstdio>

/// A local server that answers every request with "hello".
class Greeter : public QTcpServer
{
public:
    Greeter()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *const connection = nextPendingConnection();
            connect(connection, &QTcpSocket::readyRead, connection, [connection] {
                if (connection->readAll().endsWith("\r\n\r\n"))
                    connection->write("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello");
            });
        });
    }

    [[nodiscard]] QUrl url() const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/greeting").arg(serverPort()));
    }
};

/// Waits until a condition holds. Prints @p what when that takes too long.
template<typename Condition>
[[nodiscard]] bool waitFor(const char *what, Condition condition)
{
    const QDeadlineTimer deadline(20000);
    while (!condition()) {
        if (deadline.hasExpired()) {
            std::fprintf(stderr, "Missing: %s\n", what);
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    return true;
}
