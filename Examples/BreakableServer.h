#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>

/// An HTTP server whose handlers can break the connection that they answer on, and which stops at once.
class BreakableServer final : public httplib::Server
{
public:
    BreakableServer();

    /// Returns when connections are accepted, or when the server was stopped first.
    void waitUntilRunning() const;
    /// Breaks all connections and refuses new ones; listening ends once every handler has returned. Any
    /// thread.
    void stopAtOnce();

    /// Breaks the connection that the calling handler answers on, without another byte.
    static void dropConnection();
    /// Lets the calling handler wait; shorter when the server stops.
    void pause(std::chrono::milliseconds time);

private:
    bool process_and_close_socket(socket_t socket) override;
    bool admit(socket_t socket);
    void release(socket_t socket);

    std::mutex m_mutex;
    std::condition_variable m_stopped;
    std::set<socket_t> m_sockets;
    bool m_stopping = false;
};
