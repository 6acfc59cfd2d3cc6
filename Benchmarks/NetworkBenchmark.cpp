// Measures what the capture of Qt's network access manager costs: the processor time of a host for each
// request, alternately with and without capture, and the memory that recorded bodies keep. The server and the
// hosts are processes of their own: the server's time does not make the difference look smaller, and each
// host starts with the same heap.

#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Heap.h"
#include "Benchmarks/LoopbackServer.h"
#include "Benchmarks/Report.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QProcess>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <array>

using Contest::require;

namespace {

/// Qt opens six connections to a host, so no request waits in a queue.
constexpr int concurrent = 6;
/// The requests before each measurement.
constexpr int leading = 2 * concurrent;

// The host

enum class Reading {
    AtFinished,
    AtEachReadyRead,
};

/// Sends one request and reads its body as hosts do.
void get(QNetworkAccessManager &manager, const QUrl &url, Reading reading,
         const std::function<void(const QByteArray &)> &finished)
{
    QNetworkReply *const reply = manager.get(QNetworkRequest(url));
    auto body = std::make_shared<QByteArray>();
    if (reading == Reading::AtEachReadyRead) {
        QObject::connect(reply, &QNetworkReply::readyRead, reply,
                         [reply, body] { body->append(reply->readAll()); });
    }
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, body, finished] {
        reply->deleteLater();
        require(reply->error() == QNetworkReply::NoError, "a request failed");
        finished(body->isEmpty() ? reply->readAll() : body->append(reply->readAll()));
    });
}

/// Sends requests, several at a time.
void exchange(QNetworkAccessManager &manager, const QUrl &url, Reading reading, int requests,
              const std::function<void(const QByteArray &)> &check)
{
    QEventLoop loop;
    int started = 0;
    int ended = 0;
    std::function<void()> next = [&] {
        if (started++ >= requests)
            return;
        get(manager, url, reading, [&](const QByteArray &body) {
            check(body);
            if (++ended == requests)
                loop.quit();
            next();
        });
    };
    for (int i = 0; i < concurrent; ++i)
        next();
    loop.exec();
    QCoreApplication::processEvents(); // deletes the last replies
}

/// Waits until the recorder, on the main thread, has completed its traces, perhaps later than the host gets
/// the bodies.
void awaitTraces(int requests)
{
    const auto isComplete = [&] {
        const QXTraceList traces = QXRequestRecorder::shared().requests();
        return traces.size() == requests &&
               std::all_of(traces.begin(), traces.end(),
                           [](const QXRequestTrace &trace) { return trace.duration.has_value(); });
    };
    while (!isComplete())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void checkTraces(const QByteArray &expected)
{
    for (const QXRequestTrace &trace : QXRequestRecorder::shared().requests()) {
        require(trace.response && trace.response->statusCode == 200 && !trace.error, "a trace is wrong");
        require(trace.response->body == expected, "a recorded body differs");
    }
}

/// The measurements of one host.
struct Figures
{
    /// Microseconds of processor time for each request.
    double time;
    /// Bytes allocated for each request and still in use.
    double memory;
    /// The sum of the capacities of all recorded bodies by the sum of their sizes.
    double capacity;
};

/// Sends requests and measures all but the first ones, which open the connections and find an empty heap.
Figures measure(QNetworkAccessManager &manager, const QString &kind, const QUrl &url, Reading reading,
                int requests)
{
    const bool isCaptured = kind == u"captured";
    const bool isKeeping = kind == u"keeping";
    std::vector<QByteArray> kept;
    const QByteArray expected = LoopbackServer::bodyOf(url.path().mid(1).toLongLong());
    // Hosts do not compare bodies, so this is no part of the measurement.
    exchange(manager, url, reading, leading,
             [&](const QByteArray &body) { require(body == expected, "a body differs"); });
    if (isCaptured)
        awaitTraces(leading);

    const double memory = Heap::inUse();
    const double start = LoopbackServer::processorTime();
    exchange(manager, url, reading, requests, [&](const QByteArray &body) {
        require(body.size() == expected.size(), "a body has another size");
        if (isKeeping)
            kept.push_back(body);
    });
    if (isCaptured)
        awaitTraces(leading + requests);
    const double end = LoopbackServer::processorTime();
    Figures figures{(end - start) / requests, (Heap::inUse() - memory) / requests, 0};

    checkTraces(expected);
    const QXTraceList traces = QXRequestRecorder::shared().requests();
    require(isCaptured || traces.isEmpty(), "the plain manager is captured");
    for (const QXRequestTrace &trace : traces)
        figures.capacity +=
            double(trace.response->body->capacity()) / double(expected.size() * traces.size());
    return figures;
}

void runHost(const QStringList &arguments)
{
    const QString &kind = arguments.at(2);
    const auto reading = Reading(arguments.at(4).toInt());
    QTimer::singleShot(60'000, qApp, [] { require(false, "an exchange does not end"); });
    std::unique_ptr<QNetworkAccessManager> manager;
    if (kind == u"captured")
        manager = std::make_unique<QXNetworkAccessManager>();
    else
        manager = std::make_unique<QNetworkAccessManager>();
    const Figures figures = measure(*manager, kind, QUrl(arguments.at(3)), reading, arguments.at(5).toInt());
    std::printf("%f %f %f\n", figures.time, figures.memory, figures.capacity);
}

// The comparison

struct Load
{
    const char *name;
    const char *path;
    int requests;
    Reading reading;
    int rounds;
    const char *goal;
    double goalAdvantage;
};

Figures host(const char *kind, const QUrl &server, const char *path, int requests, Reading reading)
{
    QProcess process;
    LoopbackServer::start(process, {QStringLiteral("--host"), QString::fromLatin1(kind),
                                    server.resolved(QUrl(QString::fromLatin1(path))).toString(),
                                    QString::number(int(reading)), QString::number(requests)});
    const std::vector<double> numbers = LoopbackServer::readNumbers(process, 3);
    LoopbackServer::stop(process);
    return {numbers[0], numbers[1], numbers[2]};
}

enum Kind { Plain, Keeping, Captured, KindCount };
constexpr std::array<const char *, KindCount> kindNames{"plain", "keeping", "captured"};

/// The hosts of a round run one after the other, so that the load of the machine is about the same for all.
/// The one that keeps its bodies shows how much of the difference is due to the memory, which every new body
/// takes from the system and which a plain host uses again.
void measureTime(const QUrl &server, const Load &load)
{
    std::array<std::vector<double>, KindCount> times;
    std::array<std::vector<double>, KindCount> ratios;
    for (int round = 0; round < load.rounds; ++round) {
        for (size_t i = 0; i < KindCount; ++i) {
            const size_t next = round % 2 == 0 ? i : KindCount - 1 - i;
            times[next].push_back(host(kindNames[next], server, load.path, load.requests, load.reading).time);
        }
        for (size_t i = 0; i < KindCount; ++i)
            ratios[i].push_back(times[i].back() / times[Captured].back());
    }
    const QByteArray metric = QByteArray("processor time of a request: ") + load.name;
    const double captured = Contest::median(times[Captured]);
    // The medians of the ratios in each round, as times: the load of the machine changes between rounds.
    const auto row = [&](const char *peer, Kind kind) {
        return Report::Row{.metric = metric.constData(),
                           .place = "all threads of the host's process",
                           .unit = "us",
                           .ours = captured,
                           .peer = Report::Other{peer, captured * Contest::median(ratios[kind])}};
    };
    Report::Row toManager = row("QNetworkAccessManager", Plain);
    toManager.goal = load.goal;
    toManager.goalAdvantage = load.goalAdvantage;
    Report::add(toManager);
    Report::add(row("the same in a host that keeps its bodies", Keeping));
}

void measureMemory(const QUrl &server, const char *name, const char *path, int requests)
{
    const Figures figures = host("captured", server, path, requests, Reading::AtFinished);
    const QByteArray bodies = QByteArray("memory of ") + name;
    const QByteArray exchange = QByteArray("memory of an exchange, ") + name;
    Report::add({.metric = bodies.constData(),
                 .place = "capacity of what the recorder keeps",
                 .unit = "x",
                 .ours = figures.capacity,
                 .limit = Report::Other{"their bytes", 1}});
    Report::add({.metric = exchange.constData(),
                 .place = "allocator of the host's process",
                 .unit = "bytes",
                 .ours = figures.memory});
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.contains(QStringLiteral("--server")))
        return LoopbackServer::run();
    if (arguments.contains(QStringLiteral("--host"))) {
        runHost(arguments);
        return 0;
    }
    QProcess process;
    const QUrl server = LoopbackServer::startIn(process);

    constexpr const char *small = "1.05 x the peer at most";
    constexpr const char *large = "1.10 x the peer at most";
    for (const Load &load : {
             Load{"200 bytes, read at the end", "/200", 500, Reading::AtFinished, 40, small, 1 / 1.05},
             Load{"200 bytes, read at each readyRead", "/200", 500, Reading::AtEachReadyRead, 40, small,
                  1 / 1.05},
             Load{"4 MB, read at the end", "/4000000", 48, Reading::AtFinished, 20, large, 1 / 1.10},
             Load{"4 MB, read at each readyRead", "/4000000", 48, Reading::AtEachReadyRead, 20, large,
                  1 / 1.10},
         })
        measureTime(server, load);
    measureMemory(server, "3,000 bodies of 189 bytes", "/189", 3000);
    measureMemory(server, "20 bodies of 4 MB", "/4000000", 20);

    LoopbackServer::stop(process);
    return 0;
}
