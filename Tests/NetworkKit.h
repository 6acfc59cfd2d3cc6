#pragma once

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXRequestRecorder.h"

#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QTest>

inline QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

/// The newest trace, when it has ended.
inline QXRequestTrace newest()
{
    const bool ended = QTest::qWaitFor([] {
        const QXTraceList traces = recorder().requests();
        return !traces.isEmpty() && traces[0].duration.has_value();
    });
    if (!ended)
        qFatal("no exchange was recorded");
    return recorder().requests()[0];
}

/// Removes the traces and the rules, and lets the cooldown after the last release be over.
inline void startAfresh()
{
    static auto late = std::chrono::hours(0);
    ++late;
    QXBreakpointStore::shared().setRules({});
    QXBreakpointCenter::shared().setClock([] { return std::chrono::steady_clock::now() + late; });
    recorder().clear();
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

    [[nodiscard]] QUrl url() const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/tap").arg(m_server.serverPort()));
    }
    void write(const QByteArray &bytes) { m_sockets.constLast()->write(bytes); }

    /// The responses that are sent when requests arrive.
    QByteArrayList first;

private:
    QTcpServer m_server;
    QList<QTcpSocket *> m_sockets;
    QByteArray m_received;
};
