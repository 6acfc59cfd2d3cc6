#include "Examples/DemoServer.h"

#include "Examples/BreakableServer.h"
#include "Examples/DiagnosticRoutes.h"
#include "Examples/StoreRoutes.h"

#include <thread>

struct DemoServer::Private
{
    BreakableServer http;
    StoreRoutes store{http};
    DiagnosticRoutes diagnostics{http};
    std::thread thread;
};

DemoServer::DemoServer() : m_private(std::make_unique<Private>()) {}

DemoServer::~DemoServer()
{
    stop();
}

bool DemoServer::start(quint16 wanted)
{
    const int port = m_private->http.openPort(wanted);
    if (port <= 0)
        return false;
    m_port = static_cast<quint16>(port);
    m_private->thread = std::thread([this] { m_private->http.listen_after_bind(); });
    m_private->http.waitUntilRunning();
    return true;
}

void DemoServer::stop()
{
    if (!m_private->thread.joinable())
        return;
    m_private->http.stopAtOnce();
    m_private->thread.join();
}

QUrl DemoServer::url(const QString &pathAndQuery) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(QString::number(m_port), pathAndQuery));
}
