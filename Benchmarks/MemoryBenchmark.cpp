// Measures the memory that a recorded exchange keeps, beside that of a reply that the host keeps. Each case
// runs in a process of its own against a server in another one, and asks the allocator.

#include "Quorvix/QXExchange.h"
#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSessionHook.h"

#include "Platform/NSURLSession.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Exchanges.h"
#include "Benchmarks/Heap.h"
#include "Benchmarks/Report.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QProcess>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <cstdio>
#include <deque>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr int warmUp = 300;
constexpr int concurrent = 6;
constexpr qsizetype smallBody = 1000;
/// A little less than 49 pages, which the allocator takes from the system for it.
constexpr qsizetype largeBody = 200'500;

/// Text that a coding makes smaller.
QByteArray bodyOf(qsizetype size)
{
    QByteArray body;
    body.reserve(size);
    for (int i = 0; body.size() < size; ++i)
        body += R"({"id":)" + QByteArray::number(i * 7919) + R"(,"name":"item","price":12.5},)";
    body.truncate(size);
    return body;
}

// The server

/// Answers each request on a connection; the path says how: the coding and the number of bytes.
class Server final
{
public:
    Server()
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *const socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [this, socket, pending = QByteArray()]() mutable {
                                 pending += socket->readAll();
                                 while (answer(*socket, pending)) {
                                 }
                             });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        Contest::require(m_server.listen(QHostAddress::LocalHost), "the server listens");
    }

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }

private:
    /// Returns whether there was a whole request.
    bool answer(QTcpSocket &socket, QByteArray &pending)
    {
        const qsizetype head = pending.indexOf("\r\n\r\n");
        if (head < 0)
            return false;
        const QByteArray lines = pending.first(head).toLower();
        const qsizetype field = lines.indexOf("\r\ncontent-length:");
        const qsizetype length =
            field < 0
                ? 0
                : lines.mid(field + 17, lines.indexOf("\r\n", field + 2) - field - 17).trimmed().toLongLong();
        if (pending.size() < head + 4 + length)
            return false;
        const QByteArray path = lines.mid(lines.indexOf(' ') + 2);
        const bool isCoded = path.startsWith("deflate/");
        const qsizetype size = path.mid(path.indexOf('/') + 1).split('/').constFirst().toLongLong();
        QByteArray body = bodyOf(size);
        if (isCoded)
            body = qCompress(body).sliced(4);
        QByteArray response = "HTTP/1.1 200 OK\r\n";
        for (const auto &[name, value] : Exchanges::responseHeaders(m_number++, body.size()))
            response += name + ": " + value + "\r\n";
        if (isCoded)
            response += "Content-Encoding: deflate\r\n";
        socket.write(response + "\r\n" + body);
        pending.remove(0, head + 4 + length);
        return true;
    }

    QTcpServer m_server;
    int m_number = 0;
};

// The client

/// One way to exchange something. Calls @p done at the end.
using Send = std::function<void(int number, const std::function<void()> &done)>;

/// Runs exchanges, several at a time, until nothing is left to do for them.
void run(int first, int count, const Send &send)
{
    QEventLoop loop;
    int started = 0;
    int ended = 0;
    std::function<void()> next = [&] {
        if (started < count)
            send(first + started++, [&] {
                if (++ended == count)
                    loop.quit();
                else
                    QMetaObject::invokeMethod(
                        &loop, [&] { next(); }, Qt::QueuedConnection);
            });
    };
    for (int i = 0; i < std::min(concurrent, count); ++i)
        next();
    loop.exec();
    // What runs later, such as the deletion of replies.
    QTimer::singleShot(2500, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Child
{
    QString base;
    QNetworkAccessManager plain;
    QXNetworkAccessManager captured;
    std::deque<std::unique_ptr<QNetworkReply>> kept;

    [[nodiscard]] QNetworkRequest networkRequest(int number, const QString &how) const
    {
        QNetworkRequest request(QUrl(base + how + Exchanges::path(number)));
        for (const auto &[name, value] : Exchanges::requestHeaders(number))
            request.setRawHeader(name, value);
        return request;
    }

    [[nodiscard]] URLRequest request(int number, const QString &how) const
    {
        return Exchanges::request(number, QUrl(base + how + Exchanges::path(number)));
    }

    void sendBySession(const URLRequest &request, const std::function<void()> &done)
    {
        NSURLSession::shared()
            .dataTaskWithRequest(request,
                                 [done](const auto &data, const auto &, const auto &error) {
                                     Contest::require(data && !error, "the session has loaded");
                                     done();
                                 })
            ->resume();
    }

    void sendByManager(QNetworkReply *reply, const QString &reading, const std::function<void()> &done)
    {
        if (reading == u"readyRead"_s)
            QObject::connect(reply, &QIODevice::readyRead, reply, [reply] { reply->readAll(); });
        QObject::connect(reply, &QNetworkReply::finished, reply, [reply, reading, done] {
            if (reading == u"end"_s)
                Contest::require(!reply->readAll().isEmpty(), "the reply has a body");
            reply->deleteLater();
            done();
        });
    }

    /// As a client of another library reports an exchange, with a body that has grown to its size.
    void report(int number, qsizetype size, const std::function<void()> &done)
    {
        QByteArray body = bodyOf(size);
        body.reserve(2 * size);
        QXExchange exchange(request(number, QString()));
        exchange.complete(Exchanges::response(number), body, {});
        QMetaObject::invokeMethod(QCoreApplication::instance(), done, Qt::QueuedConnection);
    }

    [[nodiscard]] Send sender(const QString &name, qsizetype size)
    {
        const QString how = (name.contains(u"coded"_s) ? u"deflate/%1"_s : u"plain/%1"_s).arg(size);
        const QString small = u"plain/10"_s;
        if (name == u"kept"_s)
            return [this, how](int number, const auto &done) {
                kept.emplace_back(plain.get(networkRequest(number, how)));
                QObject::connect(kept.back().get(), &QNetworkReply::finished, done);
            };
        if (name.startsWith(u"session"_s))
            return [this, how](int number, const auto &done) {
                sendBySession(request(number, how), done);
            };
        if (name == u"upload session"_s)
            return [this, small, size](int number, const auto &done) {
                URLRequest sent = request(number, small);
                sent.httpMethod = u"POST"_s;
                sent.httpBody = bodyOf(size);
                sent.httpBody->reserve(2 * size);
                sendBySession(sent, done);
            };
        if (name == u"upload bytes"_s)
            return [this, small, size](int number, const auto &done) {
                QByteArray body = bodyOf(size);
                body.reserve(2 * size);
                QNetworkRequest sent = networkRequest(number, small);
                sent.setRawHeader("Content-Type", "application/json");
                sendByManager(captured.post(sent, body), u"end"_s, done);
            };
        if (name == u"upload device"_s)
            return [this, small, size](int number, const auto &done) {
                QNetworkRequest sent = networkRequest(number, small);
                sent.setRawHeader("Content-Type", "application/json");
                auto *const device = new Device(bodyOf(size));
                QNetworkReply *const reply = captured.post(sent, device);
                device->setParent(reply);
                sendByManager(reply, u"end"_s, done);
            };
        if (name == u"reported"_s)
            return [this, size](int number, const auto &done) {
                report(number, size, done);
            };
        return [this, how, reading = name.section(u' ', -1)](int number, const auto &done) {
            sendByManager(captured.get(networkRequest(number, how)), reading, done);
        };
    }

    /// A device whose bytes cannot be shared.
    class Device final : public QIODevice
    {
    public:
        explicit Device(QByteArray bytes) : m_bytes(std::move(bytes)) { open(ReadOnly); }
        [[nodiscard]] qint64 size() const override { return m_bytes.size(); }

    protected:
        qint64 readData(char *data, qint64 maxSize) override
        {
            const qint64 size = std::min<qint64>(maxSize, m_bytes.size() - pos());
            std::copy_n(m_bytes.constData() + pos(), size, data);
            return size;
        }
        qint64 writeData(const char *, qint64) override { return -1; }

    private:
        const QByteArray m_bytes;
    };
};

/// Prints the memory for one exchange, in bytes.
int runChild(const QStringList &arguments)
{
    const QString &name = arguments.at(1);
    const int count = arguments.at(2).toInt();
    const qsizetype size = arguments.at(3).toLongLong();
    QXSessionHook::install();
    Child child;
    child.base = arguments.at(4);
    const Send send = child.sender(name, size);
    run(0, warmUp / (size > smallBody ? 20 : 1), send);
    // Traces of the warm-up stay, so that what they share is counted there.
    const qsizetype before = QXRequestRecorder::shared().requests().size();
    const double inUseBefore = Heap::inUse();
    run(warmUp, count, send);
    const double used = Heap::inUse() - inUseBefore;

    const QXTraceList traces = QXRequestRecorder::shared().requests();
    if (name == u"kept"_s)
        Contest::require(child.kept.back()->bytesAvailable() == size, "the body is kept");
    else
        Contest::require(traces.size() == before + count && traces[0].response, "all is recorded");
    const auto bodySize = [](const std::optional<QByteArray> &body) {
        return body ? body->size() : 0;
    };
    for (qsizetype i = 0; name != u"kept"_s && i < count; ++i)
        Contest::require(std::max(bodySize(traces[i].body), bodySize(traces[i].response->body)) == size,
                         "the body is kept");
    std::printf("%.1f\n", used / count);
    return 0;
}

// The parent

/// One way to exchange something, how often, and the size of the larger body.
struct Case
{
    const char *name;
    int count;
    qsizetype size;
};

/// The memory for one exchange of each case, in bytes. Many cases run at a time: the load of the machine
/// changes nothing, and each waits for seconds until all is freed that can be.
std::vector<double> measure(const std::vector<Case> &cases)
{
    constexpr size_t atATime = 8;
    const Server server;
    const QString address = u"http://127.0.0.1:%1/"_s.arg(server.port());
    std::vector<QProcess> children(cases.size());
    QEventLoop loop;
    size_t started = 0;
    size_t ended = 0;
    const auto startNext = [&] {
        if (started == cases.size())
            return;
        const Case &next = cases[started];
        QProcess &child = children[started++];
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(),
                    {QString::fromLatin1(next.name), QString::number(next.count), QString::number(next.size),
                     address});
    };
    for (QProcess &child : children) {
        QObject::connect(&child, &QProcess::finished, &loop, [&] {
            startNext();
            if (++ended == cases.size())
                loop.quit();
        });
    }
    for (size_t i = 0; i < atATime; ++i)
        startNext();
    loop.exec();
    std::vector<double> memory;
    for (size_t i = 0; i < cases.size(); ++i) {
        memory.push_back(children[i].readAllStandardOutput().trimmed().toDouble());
        Contest::require(children[i].exitStatus() == QProcess::NormalExit && children[i].exitCode() == 0 &&
                             memory.back() > 0,
                         cases[i].name);
    }
    return memory;
}

void reportTraces(double texts)
{
    constexpr int exchanges = 3000;
    const std::vector<double> memory = measure({{"kept", exchanges, smallBody},
                                                {"session", exchanges, smallBody},
                                                {"manager end", exchanges, smallBody}});
    const char *const metrics[] = {"Memory of a trace, session", "Memory of a trace, network access manager"};
    for (size_t i = 0; i < std::size(metrics); ++i)
        Report::add(
            {.metric = metrics[i],
             .place = "allocator of the host's process, without the bytes of the body and of 21 headers",
             .unit = "bytes",
             .ours = memory[i + 1] - double(smallBody) - texts,
             .peer =
                 Report::Other{"QNetworkReply that the host keeps", memory[0] - double(smallBody) - texts},
             .goal = "1,000 bytes",
             .goalValue = 1000});
}

/// The trace and the texts of its headers are the other rows' matter.
void reportBodies()
{
    const char *const names[] = {"session",       "session coded",     "manager end",    "manager readyRead",
                                 "manager never", "manager coded end", "upload session", "upload bytes",
                                 "upload device", "reported"};
    constexpr int exchanges = 150;
    // The same without the body, or nearly so.
    constexpr qsizetype tinyBody = 100;
    std::vector<Case> cases;
    for (const char *name : names)
        cases.insert(cases.end(), {{name, exchanges, largeBody}, {name, exchanges, tinyBody}});
    const std::vector<double> memory = measure(cases);
    for (size_t i = 0; i < std::size(names); ++i) {
        const QByteArray metric = QByteArray("Memory of a body of 200 kB, ") + names[i];
        Report::add({.metric = metric.constData(),
                     .place = "allocator of the host's process, without what an exchange of 100 bytes keeps",
                     .unit = "x",
                     .ours = (memory[2 * i] - memory[2 * i + 1]) / double(largeBody - tinyBody),
                     .limit = Report::Other{"its bytes", 1},
                     .goal = "1.00 x its bytes",
                     // What is printed as 1.00: the allocator's own words are no bytes of the body.
                     .goalValue = 1.005});
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 4)
        return runChild(arguments);
    reportTraces(double(Exchanges::textSize(Exchanges::requestHeaders(1000)) +
                        Exchanges::textSize(Exchanges::responseHeaders(1000, smallBody))));
    reportBodies();
    return 0;
}
