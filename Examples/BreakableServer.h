#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

/// An HTTP server whose handlers can break their connection, and which stops at once. It uses only public
/// functions of its base class, because those change least between releases.
class BreakableServer final : public httplib::Server
{
public:
    BreakableServer();

    /// Opens the @p wanted port of the loopback interface, or one that the system chooses when that is 0 or
    /// not free. Returns 0 or less when that fails.
    int openPort(int wanted = 0);
    /// Returns when the server accepts connections or has been stopped.
    void waitUntilRunning() const;
    /// Breaks all connections and refuses new ones. Listening ends when every handler has returned. Any
    /// thread.
    void stopAtOnce();

    /// Breaks the connection of @p request without sending another byte.
    static void dropConnection(const httplib::Request &request);
    /// Blocks the calling handler for this time, or until the server stops.
    void pause(std::chrono::milliseconds time);

private:
    int m_port = 0;
    std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_stopping = false;
};
