// Measures what recording and completing one exchange costs the main thread while the list is closed, with
// few and with many traces in the store.

#include "Quorvix/QXRequestRecorder.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Exchanges.h"
#include "Benchmarks/Report.h"

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <vector>

using namespace Quorvix;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int few = 100;
constexpr int many = 100'000;
constexpr int rounds = 9;

/// An exchange as it arrives: its objects were made by other code, before the clock starts.
struct Exchange
{
    QString id;
    URLRequest request;
    NSURLResponsePtr response;
};

std::vector<Exchange> makeExchanges(int first, int count, bool hasFewHeaders)
{
    std::vector<Exchange> made;
    for (int i = first; i < first + count; ++i) {
        if (hasFewHeaders)
            made.push_back(
                {Exchanges::identifier(i), Exchanges::shortRequest(i), Exchanges::shortResponse()});
        else
            made.push_back({Exchanges::identifier(i), Exchanges::request(i), Exchanges::response(i)});
    }
    return made;
}

/// The simple way to store the list: an array with insertion at the front, of which an open list holds a
/// copy.
class PlainStore
{
public:
    void fill(int size)
    {
        m_requests.clear();
        for (int i = size; i-- > 0;)
            m_requests.append(QXRequestTrace(Exchanges::identifier(i), Exchanges::request(i)));
    }

    void record(const QString &id, const URLRequest &request)
    {
        m_requests.prepend(QXRequestTrace(id, request));
        m_snapshot = m_requests;
    }

    void complete(const QString &id, const NSURLResponsePtr &response, const QByteArray &data)
    {
        for (QXRequestTrace &trace : m_requests) {
            if (trace.id == id) {
                trace.response = QXResponseTrace(static_cast<const NSHTTPURLResponse &>(*response), data);
                break;
            }
        }
        m_snapshot = m_requests;
    }

    [[nodiscard]] const QList<QXRequestTrace> &requests() const { return m_requests; }

private:
    QList<QXRequestTrace> m_requests;
    QList<QXRequestTrace> m_snapshot;
};

/// Records and completes some exchanges one after the other. Returns the microseconds for each.
template<typename Store>
double timePerExchange(Store &store, const std::vector<Exchange> &exchanges, const QByteArray &body)
{
    const auto start = Clock::now();
    for (const Exchange &exchange : exchanges) {
        store.record(exchange.id, exchange.request);
        store.complete(exchange.id, exchange.response, body);
    }
    const double time = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    const auto &newest = store.requests()[0];
    Contest::require(newest.id == exchanges.back().id && newest.response->body == body,
                     "the newest exchange is recorded and complete");
    return time / double(exchanges.size());
}

/// The shared recorder, with the same functions as the peer.
class Recorder
{
public:
    void fill(int size)
    {
        m_recorder.clear();
        for (int i = 0; i < size; ++i)
            record(Exchanges::identifier(i), Exchanges::request(i));
    }
    void record(const QString &id, const URLRequest &request) { m_recorder.record(id, request); }
    void complete(const QString &id, const NSURLResponsePtr &response, const QByteArray &data)
    {
        m_recorder.complete(id, response, data, {});
    }
    [[nodiscard]] QXTraceList requests() const { return m_recorder.requests(); }

private:
    QXRequestRecorder &m_recorder = QXRequestRecorder::shared();
};

void measure(int size)
{
    const QByteArray body(1000, 'x');
    Recorder recorder;
    PlainStore plain;
    recorder.fill(size);
    plain.fill(size);
    // As many as the caches hold: an application, too, has just made what it reports.
    const int batch = 100;
    // A copy of the whole list for each change takes long.
    const int plainBatch = size > 10'000 ? 3 : 100;
    int number = size;
    const auto make = [&](int count, bool hasFewHeaders = false) {
        number += count;
        return makeExchanges(number - count, count, hasFewHeaders);
    };
    std::vector<double> ours;
    std::vector<double> shortOnes;
    std::vector<double> withBudget;
    std::vector<double> peers;
    for (int round = 0; round < rounds; ++round) {
        // The copies of the peer have emptied the caches of the processor and of the allocator.
        timePerExchange(recorder, make(batch), body);
        ours.push_back(timePerExchange(recorder, make(batch), body));
        shortOnes.push_back(timePerExchange(recorder, make(batch, true), body));
        // Each completion removes the oldest body.
        QXRequestRecorder::shared().setBodyBudget(100 * body.size());
        withBudget.push_back(timePerExchange(recorder, make(batch), body));
        QXRequestRecorder::shared().setBodyBudget(std::nullopt);
        peers.push_back(timePerExchange(plain, make(plainBatch), body));
        // So that a small list stays one, and all find memory that was in use before.
        recorder.fill(size);
        plain.fill(size);
    }
    const double peer = Contest::median(peers);
    const auto add = [&](const QString &what, const std::vector<double> &times, const char *goal = nullptr,
                         std::optional<double> goalValue = {}) {
        const QByteArray metric = QStringLiteral("%1, %L2 traces").arg(what).arg(size).toUtf8();
        Report::add({.metric = metric.constData(),
                     .place = "main thread, list closed: record and complete",
                     .unit = "us",
                     .ours = Contest::median(times),
                     .peer = Report::Other{"array with a snapshot", peer},
                     .goal = goal,
                     .goalValue = goalValue});
    };
    add(QStringLiteral("One exchange with 21 headers"), ours, "0.5 us", 0.5);
    add(QStringLiteral("One exchange with 2 headers"), shortOnes);
    add(QStringLiteral("One exchange with a budget for bodies"), withBudget);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    measure(few);
    measure(many);
    return 0;
}
