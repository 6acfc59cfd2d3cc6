#include "Soak/SoakServer.h"

#include "Soak/SoakPlan.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

#include <arpa/inet.h>
#include <csignal>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

namespace {

using namespace std::chrono_literals;
using Fault = SoakFault;

/// Long enough for a client with a time-out to give up first.
constexpr timeval endlessStall{20, 0};

/// A connection of a client. Blocks; a function that returns false has lost the client.
class Connection
{
public:
    explicit Connection(int socket) : m_socket(socket)
    {
        const int on = 1;
        setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    ~Connection() { close(m_socket); }

    /// Reads on until the buffer ends with at least @p size bytes.
    [[nodiscard]] bool read(qsizetype size)
    {
        while (m_arrived.size() < size) {
            char part[65536];
            const ssize_t count = recv(m_socket, part, sizeof part, 0);
            if (count <= 0)
                return false;
            m_arrived.append(part, count);
        }
        return true;
    }

    [[nodiscard]] bool write(QByteArrayView bytes) const
    {
        while (!bytes.isEmpty()) {
            const ssize_t count = send(m_socket, bytes.data(), size_t(bytes.size()), MSG_NOSIGNAL);
            if (count <= 0)
                return false;
            bytes = bytes.sliced(count);
        }
        return true;
    }

    /// Waits until the client goes away, but not for ever.
    void stall() const
    {
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &endlessStall, sizeof endlessStall);
        char part[4096];
        while (recv(m_socket, part, sizeof part, 0) > 0) {
        }
    }

    /// The destructor then resets the connection in place of closing it.
    void resetAtEnd() const
    {
        const linger none{1, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    }

    [[nodiscard]] QByteArray &arrived() { return m_arrived; }

private:
    const int m_socket;
    QByteArray m_arrived;
};

struct Request
{
    QByteArray method;
    QByteArray target;
    QByteArray number;
    QByteArray body;
};

QByteArray headerValue(const QByteArray &head, const QByteArray &name)
{
    const QByteArray field = "\r\n" + name.toLower() + ": ";
    const qsizetype found = head.toLower().indexOf(field);
    if (found < 0)
        return {};
    const QByteArray rest = head.mid(found + field.size());
    return rest.left(rest.indexOf('\r'));
}

std::optional<Request> readRequest(Connection &connection)
{
    qsizetype end = -1;
    for (qsizetype wanted = 1; (end = connection.arrived().indexOf("\r\n\r\n")) < 0;
         wanted = connection.arrived().size() + 1) {
        if (!connection.read(wanted))
            return std::nullopt;
    }
    const QByteArray head = connection.arrived().left(end + 2);
    const qsizetype size = end + 4 + headerValue(head, "Content-Length").toLongLong();
    if (!connection.read(size))
        return std::nullopt;
    const QByteArrayList words = head.left(head.indexOf('\r')).split(' ');
    Request request{words.value(0), words.value(1), headerValue(head, soakNumberHeader.data()),
                    connection.arrived().mid(end + 4, size - end - 4)};
    connection.arrived().remove(0, size);
    return request;
}

QByteArray gzipped(const QByteArray &content)
{
    z_stream stream{};
    constexpr int gzipFormat = 15 + 16;
    constexpr int usualMemory = 8;
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipFormat, usualMemory, Z_DEFAULT_STRATEGY);
    QByteArray bytes(qsizetype(deflateBound(&stream, uLong(content.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(content.constData()));
    stream.avail_in = uInt(content.size());
    stream.next_out = reinterpret_cast<Bytef *>(bytes.data());
    stream.avail_out = uInt(bytes.size());
    deflate(&stream, Z_FINISH);
    bytes.resize(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return bytes;
}

/// The answer to one request.
class Answer
{
public:
    Answer(Connection &connection, const SoakPlan &plan, const Request &request)
        : m_connection(connection), m_plan(plan), m_request(request)
    {
    }

    /// Returns whether the connection can take another request.
    [[nodiscard]] bool send()
    {
        switch (m_plan.fault) {
        case Fault::Chunked:
        case Fault::ChunkedCut:
        case Fault::ChunkedGarbage:
            return sendChunks();
        case Fault::UntilClose:
            static_cast<void>(sendHead("Connection: close\r\n") && m_connection.write(m_plan.content()));
            return false;
        case Fault::Gzip:
        case Fault::GzipCorrupt:
        case Fault::GzipCut:
        case Fault::GzipBadSum:
            return sendGzip();
        case Fault::Redirect:
        case Fault::RedirectLoop:
            return sendRedirect();
        case Fault::Slow:
            return sendSlowly();
        case Fault::Empty:
            return sendHead("");
        case Fault::Surplus:
            static_cast<void>(sendHead(lengthField() + "Connection: close\r\n") &&
                              m_connection.write(m_plan.content() + "more than was announced"));
            return false;
        default:
            return m_plan.isRight() ? sendAll() : sendBroken();
        }
    }

private:
    [[nodiscard]] bool sendHead(const QByteArray &fields) const
    {
        const QByteArray type = m_plan.isJson ? "application/json" : "application/octet-stream";
        return m_connection.write("HTTP/1.1 " + QByteArray::number(m_plan.status) +
                                  " Soak\r\nContent-Type: " + type + "\r\n" + soakSeenHeader.data() + ": " +
                                  SoakPlan::digest(m_request.method, m_request.number, m_request.body) +
                                  "\r\n" + fields + "\r\n");
    }

    [[nodiscard]] QByteArray lengthField() const
    {
        return "Content-Length: " + QByteArray::number(m_plan.size) + "\r\n";
    }

    [[nodiscard]] bool sendAll() const
    {
        if (m_request.method == "HEAD")
            return sendHead(lengthField());
        return sendHead(lengthField()) && m_connection.write(m_plan.content());
    }

    [[nodiscard]] bool sendChunks() const
    {
        const QByteArray content = m_plan.content();
        const qsizetype end = m_plan.isRight() ? content.size() : content.size() / 2;
        const qsizetype largest = std::max<qsizetype>(1, content.size() / 5);
        if (!sendHead("Transfer-Encoding: chunked\r\n"))
            return false;
        for (qsizetype at = 0; at < end; at += largest) {
            const QByteArray chunk = content.mid(at, std::min(largest, end - at));
            if (!m_connection.write(QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n"))
                return false;
        }
        if (m_plan.fault == Fault::ChunkedGarbage)
            static_cast<void>(m_connection.write("no number\r\nno chunk"));
        return m_plan.isRight() && m_connection.write("0\r\n\r\n");
    }

    [[nodiscard]] bool sendGzip() const
    {
        QByteArray bytes = gzipped(m_plan.content());
        constexpr qsizetype headSize = 10;
        constexpr qsizetype sumSize = 8;
        if (m_plan.fault == Fault::GzipCorrupt) {
            // Within the data, where one changed byte either breaks the code or changes the content.
            for (qsizetype i = headSize + (bytes.size() - headSize - sumSize) / 2, end = i + 3; i < end; ++i)
                bytes[i] = char(bytes[i] ^ 0x55);
        } else if (m_plan.fault == Fault::GzipCut) {
            bytes.truncate(bytes.size() / 2);
        } else if (m_plan.fault == Fault::GzipBadSum) {
            bytes[bytes.size() - sumSize] = char(bytes[bytes.size() - sumSize] ^ 1);
        }
        return sendHead("Content-Encoding: gzip\r\nContent-Length: " + QByteArray::number(bytes.size()) +
                        "\r\n") &&
               m_connection.write(bytes);
    }

    [[nodiscard]] bool sendRedirect() const
    {
        if (m_plan.fault == Fault::Redirect && m_plan.hops == 0)
            return sendAll();
        const QByteArray location = m_plan.fault == Fault::Redirect ? m_plan.nextTarget() : m_request.target;
        return m_connection.write("HTTP/1.1 302 Soak\r\nContent-Length: 0\r\nLocation: " + location +
                                  "\r\n\r\n");
    }

    [[nodiscard]] bool sendSlowly() const
    {
        constexpr qsizetype parts = 8;
        const QByteArray content = m_plan.content();
        bool isThere = sendHead(lengthField());
        for (qsizetype i = 0; i < parts && isThere; ++i) {
            std::this_thread::sleep_for(30ms);
            const qsizetype begin = content.size() * i / parts;
            isThere = m_connection.write(content.sliced(begin, content.size() * (i + 1) / parts - begin));
        }
        return isThere;
    }

    /// Always ends with the connection.
    [[nodiscard]] bool sendBroken() const
    {
        const QByteArray half = m_plan.content().left(m_plan.size / 2);
        switch (m_plan.fault) {
        case Fault::Drop:
            break;
        case Fault::Silence:
            m_connection.stall();
            break;
        case Fault::Garbage:
            static_cast<void>(m_connection.write("220 This is a mail server\r\n" + half));
            break;
        default:
            static_cast<void>(sendHead(lengthField()) && m_connection.write(half));
            if (m_plan.fault == Fault::Stall)
                m_connection.stall();
            else if (m_plan.fault == Fault::Reset)
                m_connection.resetAtEnd();
        }
        return false;
    }

    Connection &m_connection;
    const SoakPlan &m_plan;
    const Request &m_request;
};

void serveClient(int socket)
{
    Connection connection(socket);
    while (const std::optional<Request> request = readRequest(connection)) {
        const std::optional<SoakPlan> plan = SoakPlan::parse(request->target);
        if (!plan || !Answer(connection, *plan, *request).send())
            return;
    }
}

void acceptClients(int listener)
{
    for (;;) {
        const int socket = accept(listener, nullptr, nullptr);
        if (socket >= 0)
            std::thread(&serveClient, socket).detach();
    }
}

} // namespace

SoakServer::SoakServer() = default;

SoakServer::~SoakServer()
{
    m_process.closeWriteChannel();
    m_process.waitForFinished();
}

bool SoakServer::start(const QString &program)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program, {QLatin1StringView(argument)});
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead())
            return false;
    }
    m_port = m_process.readLine().trimmed().toUShort();
    return m_port != 0;
}

int SoakServer::serve()
{
    constexpr int longestQueue = 256;
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    socklen_t length = sizeof address;
    if (listener < 0 || bind(listener, generic, length) != 0 || listen(listener, longestQueue) != 0 ||
        getsockname(listener, generic, &length) != 0)
        return 1;
    std::thread(&acceptClients, listener).detach();
    std::printf("%d\n", ntohs(address.sin_port));
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    // The other threads use nothing that this would destroy.
    std::_Exit(0);
}
