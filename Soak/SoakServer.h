#pragma once

#include <QtCore/QProcess>

/// The server of the soak, in a process of its own, so that it neither counts as memory of the inspector nor
/// runs under its sanitizer's locks. It speaks HTTP over raw sockets and does what the plan in the URL says.
class SoakServer final
{
public:
    SoakServer();
    /// Ends the process.
    ~SoakServer();
    SoakServer(const SoakServer &) = delete;
    SoakServer &operator=(const SoakServer &) = delete;

    /// Starts @p program as the server; false when it does not open a port. Main thread.
    [[nodiscard]] bool start(const QString &program);
    [[nodiscard]] bool isRunning() const { return m_process.state() == QProcess::Running; }
    [[nodiscard]] quint16 port() const noexcept { return m_port; }

    /// The argument with which the program has to call serve().
    static constexpr const char *argument = "--serve";
    /// Is the server until the standard input is closed. Returns the exit code of the process.
    [[nodiscard]] static int serve();

private:
    QProcess m_process;
    quint16 m_port = 0;
};
