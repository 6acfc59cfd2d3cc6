// Measures what the capture of sessions costs: exchanges per second over loopback and the processor time of
// each, alternately by a session, by a captured one and by a bare network access manager. Each of these hosts
// is a process of its own, and so is the server. They live through all rounds, so that no round begins with a
// new connection.

#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Platform/NSURLSession.h"

#include "Benchmarks/LoopbackServer.h"
#include "Benchmarks/Report.h"

#include <QtCore/QEventLoop>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <array>

using namespace Quorvix;

using Contest::require;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 60;
constexpr int exchanges = 640;
constexpr int concurrent = 32;
constexpr qsizetype bodySize = 1000;

// The host

/// Counts the bodies of one round, on the main thread, as a host does that shows them.
class Host
{
public:
    virtual ~Host() = default;

    void run()
    {
        m_started = 0;
        m_ended = 0;
        for (int i = 0; i < concurrent; ++i)
            next();
        m_loop.exec();
    }

protected:
    /// Sends one request, and passes the body to ended() on the main thread.
    virtual void send() = 0;

    void ended(qsizetype size)
    {
        require(size == bodySize, "a body has another size");
        if (++m_ended == exchanges)
            m_loop.quit();
        else
            next();
    }

private:
    void next()
    {
        if (m_started++ < exchanges)
            send();
    }

    QEventLoop m_loop;
    int m_started = 0;
    int m_ended = 0;
};

/// The same host for both sessions: it calls the main thread, which costs nothing where it is there already.
class SessionHost final : public Host
{
public:
    explicit SessionHost(const QUrl &url) : m_request(url) {}

private:
    void send() override
    {
        m_session
            .dataTaskWithRequest(m_request,
                                 [this](const std::optional<QByteArray> &data, auto, auto) {
                                     QMetaObject::invokeMethod(
                                         qApp, [this, data] { ended(data ? data->size() : 0); });
                                 })
            ->resume();
    }

    NSURLSession m_session;
    const URLRequest m_request;
};

class ManagerHost final : public Host
{
public:
    explicit ManagerHost(const QUrl &url) : m_request(url) {}

private:
    void send() override
    {
        QNetworkReply *const reply = m_manager.get(m_request);
        QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply] {
            reply->deleteLater();
            ended(reply->readAll().size());
        });
    }

    QNetworkAccessManager m_manager;
    const QNetworkRequest m_request;
};

void checkTraces(qsizetype count)
{
    const QXTraceList traces = QXRequestRecorder::shared().requests();
    require(traces.size() == count, "another number of traces");
    require(std::all_of(traces.begin(), traces.end(),
                        [](const QXRequestTrace &trace) {
                            return trace.duration && trace.response && trace.response->body &&
                                   trace.response->body->size() == bodySize;
                        }),
            "a trace is not complete");
}

/// Runs a round for each line of its standard input, and prints the exchanges per second and the microseconds
/// of processor time of all threads for each.
int runHost(const QString &kind, const QUrl &url)
{
    const bool isCaptured = kind == u"captured";
    if (isCaptured)
        std::ignore = QuorvixClient::shared();
    std::unique_ptr<Host> host;
    if (kind == u"bare")
        host = std::make_unique<ManagerHost>(url);
    else
        host = std::make_unique<SessionHost>(url);
    qsizetype total = 0;
    for (int input = std::getchar(); input != EOF; input = std::getchar()) {
        const auto start = Clock::now();
        const double processorStart = LoopbackServer::processorTime();
        host->run();
        total += exchanges;
        const double processorTime = LoopbackServer::processorTime() - processorStart;
        std::printf("%f %f\n", exchanges / std::chrono::duration<double>(Clock::now() - start).count(),
                    processorTime / exchanges);
        std::fflush(stdout);
    }
    checkTraces(isCaptured ? total : 0);
    return 0;
}

// The comparison

enum Kind { Uncaptured, Captured, Bare, KindCount };
constexpr std::array<const char *, KindCount> kindNames{"uncaptured", "captured", "bare"};

struct Figures
{
    double rate;
    double time;
};

Figures runRound(QProcess &host)
{
    host.write("\n");
    const std::vector<double> numbers = LoopbackServer::readNumbers(host, 2);
    return {numbers[0], numbers[1]};
}

/// The values of one kind in all rounds.
using Column = std::vector<double>;

/// The median over the rounds of what @p compare makes of the values of a round.
template<typename Compare>
double compared(const Column &left, const Column &right, Compare compare)
{
    Column values;
    std::transform(left.begin(), left.end(), right.begin(), std::back_inserter(values), compare);
    return Contest::median(values);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.contains(QStringLiteral("--server")))
        return LoopbackServer::run();
    if (const auto at = arguments.indexOf(QStringLiteral("--host")); at > 0)
        return runHost(arguments.at(at + 1), QUrl(arguments.at(at + 2)));

    QProcess server;
    QUrl url = LoopbackServer::startIn(server);
    url.setPath(u'/' + QString::number(bodySize));
    std::array<QProcess, KindCount> hosts;
    for (size_t kind = 0; kind < KindCount; ++kind) {
        LoopbackServer::start(
            hosts[kind], {QStringLiteral("--host"), QString::fromLatin1(kindNames[kind]), url.toString()});
        runRound(hosts[kind]); // opens the connections
    }
    std::array<Column, KindCount> rates;
    std::array<Column, KindCount> times;
    for (size_t round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < KindCount; ++i) {
            const size_t kind = (round + (round % 2 ? KindCount - i : i)) % KindCount;
            const Figures figures = runRound(hosts[kind]);
            rates[kind].push_back(figures.rate);
            times[kind].push_back(figures.time);
        }
    }
    for (QProcess &host : hosts)
        LoopbackServer::stop(host);
    LoopbackServer::stop(server);

    std::printf("Sessions over loopback, %d exchanges at a time, bodies of %d bytes; medians of %d rounds\n",
                concurrent, int(bodySize), rounds);
    const double uncaptured = Contest::median(rates[Uncaptured]);
    const double toUncaptured = compared(rates[Captured], rates[Uncaptured], std::divides());
    const double toBare = compared(rates[Captured], rates[Bare], std::divides());
    // The medians of the ratios in each round, as rates: the load of the machine changes between rounds.
    Report::add({.metric = "exchanges per second, captured",
                 .place =
                     "host's process; handlers on the main thread, from which the uncaptured session's are "
                     "called by the host",
                 .unit = "/s",
                 .ours = uncaptured * toUncaptured,
                 .peer = Report::Other{"session without capture", uncaptured},
                 .isRate = true,
                 .goal = "0.98 x the peer",
                 .goalAdvantage = 0.98});
    Report::add({.metric = "exchanges per second, captured",
                 .place = "host's process; the bare manager works and finishes on the main thread",
                 .unit = "/s",
                 .ours = uncaptured * toUncaptured,
                 .peer = Report::Other{"QNetworkAccessManager", uncaptured * toUncaptured / toBare},
                 .isRate = true,
                 .goal = "1.00 x the peer",
                 .goalAdvantage = 1});
    const double added = compared(times[Captured], times[Uncaptured], std::minus());
    const double time = Contest::median(times[Uncaptured]);
    const double addedToBare = compared(times[Captured], times[Bare], std::minus());
    for (const Report::Other &peer : {Report::Other{"session without capture", time},
                                      Report::Other{"QNetworkAccessManager", time + added - addedToBare}})
        Report::add({.metric = "processor time of an exchange, captured",
                     .place = "all threads of the host's process",
                     .unit = "us",
                     .ours = time + added,
                     .peer = peer});
    Report::add({.metric = "processor time that capture adds to an exchange",
                 .place = "all threads of the host's process",
                 .unit = "us",
                 .ours = added,
                 .goal = "8 us",
                 .goalValue = 8});
    return 0;
}
