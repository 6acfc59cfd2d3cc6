#include "Examples/BreakableServer.h"

#include <array>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

constexpr auto silenceLimit = 20s;
constexpr size_t handlerThreads = 24;
constexpr size_t requestsPerConnection = 100'000;

thread_local socket_t currentSocket = INVALID_SOCKET;

bool waitFor(socket_t socket, short events, std::chrono::milliseconds limit)
{
    pollfd descriptor{socket, events, 0};
    return ::poll(&descriptor, 1, static_cast<int>(limit.count())) > 0;
}

void readAddress(const sockaddr_in &address, std::string &ip, int &port)
{
    std::array<char, INET_ADDRSTRLEN> text{};
    if (::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()))
        ip = text.data();
    port = ntohs(address.sin_port);
}

/// A connection as the HTTP server reads and writes it. Lives as long as the connection: what was read ahead
/// belongs to the next request.
class SocketStream final : public httplib::Stream
{
public:
    explicit SocketStream(socket_t socket) : m_socket(socket) {}

    bool is_readable() const override { return m_first < m_end || waitFor(m_socket, POLLIN, silenceLimit); }
    bool is_writable() const override { return waitFor(m_socket, POLLOUT, silenceLimit); }

    ssize_t read(char *bytes, size_t size) override
    {
        if (m_first == m_end) {
            if (!is_readable())
                return -1;
            const ssize_t count = ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
            if (count <= 0)
                return count;
            m_first = 0;
            m_end = static_cast<size_t>(count);
        }
        const size_t count = std::min(size, m_end - m_first);
        std::copy_n(m_buffer.data() + m_first, count, bytes);
        m_first += count;
        return static_cast<ssize_t>(count);
    }

    ssize_t write(const char *bytes, size_t size) override
    {
        return is_writable() ? ::send(m_socket, bytes, size, MSG_NOSIGNAL) : -1;
    }

    void get_remote_ip_and_port(std::string &ip, int &port) const override
    {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        if (::getpeername(m_socket, reinterpret_cast<sockaddr *>(&address), &length) == 0)
            readAddress(address, ip, port);
    }

    void get_local_ip_and_port(std::string &ip, int &port) const override
    {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        if (::getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &length) == 0)
            readAddress(address, ip, port);
    }

    socket_t socket() const override { return m_socket; }

private:
    socket_t m_socket;
    std::array<char, 16'384> m_buffer{};
    size_t m_first = 0;
    size_t m_end = 0;
};

} // namespace

BreakableServer::BreakableServer()
{
    new_task_queue = [] {
        return new httplib::ThreadPool(handlerThreads);
    };
    set_keep_alive_max_count(requestsPerConnection);
    set_tcp_nodelay(true);
}

void BreakableServer::waitUntilRunning() const
{
    while (is_valid() && !is_running())
        std::this_thread::yield();
}

void BreakableServer::stopAtOnce()
{
    stop();
    const std::scoped_lock lock(m_mutex);
    m_stopping = true;
    for (const socket_t socket : m_sockets)
        ::shutdown(socket, SHUT_RDWR);
    m_stopped.notify_all();
}

void BreakableServer::dropConnection()
{
    ::shutdown(currentSocket, SHUT_RDWR);
}

void BreakableServer::pause(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    m_stopped.wait_for(lock, time, [this] { return m_stopping; });
}

bool BreakableServer::process_and_close_socket(socket_t socket)
{
    bool alive = admit(socket);
    currentSocket = socket;
    SocketStream stream(socket);
    for (size_t left = keep_alive_max_count_; alive && left > 0 && stream.is_readable(); --left) {
        bool closed = false;
        alive = process_request(stream, left == 1, closed, nullptr) && !closed;
    }
    currentSocket = INVALID_SOCKET;
    release(socket);
    return alive;
}

bool BreakableServer::admit(socket_t socket)
{
    const std::scoped_lock lock(m_mutex);
    m_sockets.insert(socket);
    return !m_stopping;
}

void BreakableServer::release(socket_t socket)
{
    const std::scoped_lock lock(m_mutex);
    m_sockets.erase(socket);
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
}
