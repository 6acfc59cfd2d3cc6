#include "Examples/BreakableServer.h"

#include <charconv>
#include <filesystem>
#include <optional>
#include <thread>
#include <vector>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

constexpr time_t silenceLimit = 20;
constexpr size_t handlerThreads = 24;
constexpr size_t requestsPerConnection = 100'000;

using NameOfEnd = int (*)(int, sockaddr *, socklen_t *);

/// The port of one end of a connection; 0 when @p descriptor is not a connection.
int portOf(int descriptor, NameOfEnd nameOfEnd)
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (nameOfEnd(descriptor, reinterpret_cast<sockaddr *>(&address), &length) != 0 ||
        address.sin_family != AF_INET)
        return 0;
    return ntohs(address.sin_port);
}

bool isConnection(int descriptor, int serverPort, std::optional<int> clientPort)
{
    const int peer = portOf(descriptor, ::getpeername);
    return peer != 0 && portOf(descriptor, ::getsockname) == serverPort && peer == clientPort.value_or(peer);
}

/// All open descriptors of this process.
std::vector<int> openDescriptors()
{
    std::vector<int> descriptors;
    std::error_code ignored;
    for (const auto &entry : std::filesystem::directory_iterator("/dev/fd", ignored)) {
        const std::string name = entry.path().filename().string();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        descriptors.push_back(descriptor);
    }
    return descriptors;
}

/// Breaks all connections to @p serverPort, or only the one that comes from @p clientPort. The base class
/// does not publish its sockets, so the function searches all open descriptors of the process.
void breakConnections(int serverPort, std::optional<int> clientPort = std::nullopt)
{
    for (const int descriptor : openDescriptors()) {
        if (!isConnection(descriptor, serverPort, clientPort))
            continue;
        // Another thread may close the descriptor and reuse its number at any time. A copy keeps referring to
        // the same connection.
        const int copy = ::dup(descriptor);
        if (isConnection(copy, serverPort, clientPort))
            ::shutdown(copy, SHUT_RDWR);
        ::close(copy);
    }
}

} // namespace

BreakableServer::BreakableServer()
{
    new_task_queue = [] {
        return new httplib::ThreadPool(handlerThreads);
    };
    set_keep_alive_max_count(requestsPerConnection);
    set_keep_alive_timeout(silenceLimit);
    set_tcp_nodelay(true);
}

int BreakableServer::openPort(int wanted)
{
    const bool isFree = wanted > 0 && bind_to_port("127.0.0.1", wanted);
    m_port = isFree ? wanted : bind_to_any_port("127.0.0.1");
    return m_port;
}

void BreakableServer::waitUntilRunning() const
{
    while (is_valid() && !is_running())
        std::this_thread::yield();
}

void BreakableServer::stopAtOnce()
{
    stop();
    {
        const std::scoped_lock lock(m_mutex);
        m_stopping = true;
    }
    m_stopped.notify_all();
    // A connection that was being accepted when listening stopped appears a moment later.
    while (is_running()) {
        breakConnections(m_port);
        std::this_thread::sleep_for(1ms);
    }
}

void BreakableServer::dropConnection(const httplib::Request &request)
{
    breakConnections(request.local_port, request.remote_port);
}

void BreakableServer::pause(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    m_stopped.wait_for(lock, time, [this] { return m_stopping; });
}
