#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

/// An HTTP server whose handlers can break the connection that they answer on, and which stops at once.
/// It stands on the public functions of its base alone: those change least from release to release.
class BreakableServer final : public httplib::Server
{
public:
    BreakableServer();

    /// Opens a port of the loopback interface that the system chooses; 0 or less when there is none.
    int openPort();
    /// Returns when connections are accepted, or when the server was stopped first.
    void waitUntilRunning() const;
    /// Breaks all connections and refuses new ones; listening ends once every handler has returned. Any
    /// thread.
    void stopAtOnce();

    /// Breaks the connection that @p request came by, without another byte.
    static void dropConnection(const httplib::Request &request);
    /// Lets the calling handler wait; shorter when the server stops.
    void pause(std::chrono::milliseconds time);

private:
    int m_port = 0;
    std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_stopping = false;
};
