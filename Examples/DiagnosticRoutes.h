#pragma once

#include "Examples/BreakableServer.h"

#include <QtCore/QByteArray>

/// The diagnostic routes of the demo server: every status, redirects, codings, sizes, slow responses and
/// broken connections. The table at DemoServer lists their answers.
class DiagnosticRoutes final
{
public:
    /// Adds the routes to @p server, which must outlive this object.
    explicit DiagnosticRoutes(BreakableServer &server);
    DiagnosticRoutes(const DiagnosticRoutes &) = delete;
    DiagnosticRoutes &operator=(const DiagnosticRoutes &) = delete;

private:
    void addRedirects();
    void addBodies();
    void addFailures();
    void addEcho();
    const QByteArray &exportBody();

    BreakableServer &m_server;
    std::once_flag m_exportMade;
    QByteArray m_exportBody;
};
