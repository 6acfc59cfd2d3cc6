// Measures what one exchange costs the main thread while the list is open, with few and with many traces in
// the store.

#include "Quorvix/QXRequestListViewModel.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Benchmarks/Contest.h"

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <vector>

using namespace Quorvix;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int few = 100;
constexpr int many = 100'000;
constexpr int exchanges = 2'000;

URLRequest request(int number)
{
    URLRequest made(
        QUrl(QStringLiteral("https://api.example.com/v1/products/%1?page=%2").arg(number).arg(number % 7)));
    made.setValue(QStringLiteral("application/json"), QStringLiteral("Accept"));
    return made;
}

QString identifier(int number)
{
    return QStringLiteral("6BA7B810-9DAD-11D1-80B4-%1").arg(number, 12, 10, QLatin1Char('0'));
}

double microseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

/// The simple way to store the list: an array with insertion at the front, of which an open list holds a
/// copy.
class PlainStore
{
public:
    void fill(int size)
    {
        for (int i = size; i-- > 0;)
            m_requests.append(QXRequestTrace(identifier(i), request(i)));
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

private:
    QList<QXRequestTrace> m_requests;
    QList<QXRequestTrace> m_snapshot;
};

struct Costs
{
    double store = 0;
    double withBudget = 0;
    double withOpenList = 0;
    double plain = 0;
};

Costs measure(int size)
{
    const NSURLResponsePtr response = NSHTTPURLResponse::create(
        QUrl(QStringLiteral("https://api.example.com/")), 200, QStringLiteral("HTTP/1.1"),
        {{QStringLiteral("Content-Type"), QStringLiteral("application/json")}});
    const QByteArray body(1000, 'x');
    auto &recorder = QXRequestRecorder::shared();
    recorder.clear();
    PlainStore plain;
    for (int i = 0; i < size; ++i)
        recorder.record(identifier(i), request(i));

    Costs costs;
    std::vector<double> store;
    for (int i = size; i < size + exchanges; ++i) {
        const QString id = identifier(i);
        const URLRequest sent = request(i);
        const auto start = Clock::now();
        recorder.record(id, sent);
        recorder.complete(id, response, body, {});
        store.push_back(microseconds(Clock::now() - start));
    }
    costs.store = Contest::median(store);

    // Each completion removes the oldest body.
    recorder.setBodyBudget(100 * body.size());
    std::vector<double> withBudget;
    for (int i = size + exchanges; i < size + 2 * exchanges; ++i) {
        const QString id = identifier(i);
        const URLRequest sent = request(i);
        const auto start = Clock::now();
        recorder.record(id, sent);
        recorder.complete(id, response, body, {});
        withBudget.push_back(microseconds(Clock::now() - start));
    }
    costs.withBudget = Contest::median(withBudget);
    recorder.setBodyBudget(std::nullopt);

    QXRequestListViewModel model;
    std::vector<double> open;
    for (int i = size + 2 * exchanges; i < size + 3 * exchanges; ++i) {
        const QString id = identifier(i);
        const URLRequest sent = request(i);
        const auto start = Clock::now();
        recorder.record(id, sent);
        QCoreApplication::processEvents();
        recorder.complete(id, response, body, {});
        QCoreApplication::processEvents();
        open.push_back(microseconds(Clock::now() - start));
    }
    costs.withOpenList = Contest::median(open);

    plain.fill(size);
    std::vector<double> plainTimes;
    for (int i = size; i < size + 20; ++i) {
        const auto start = Clock::now();
        plain.record(identifier(i), request(i));
        plain.complete(identifier(i), response, body);
        plainTimes.push_back(microseconds(Clock::now() - start));
    }
    costs.plain = Contest::median(plainTimes);
    return costs;
}

void measureTyping()
{
    QXRequestListViewModel model;
    std::printf("\nTyping a search over %d traces\n", int(model.requests().size()));
    for (const auto *text : {"p", "pr", "prod", "products/99", ""}) {
        const auto start = Clock::now();
        model.setSearchText(QString::fromLatin1(text));
        std::printf("  %-14s %8.0f us  %7d rows\n", text, microseconds(Clock::now() - start),
                    model.rowCount());
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const Costs small = measure(few);
    const Costs large = measure(many);
    std::printf("One record and completion, median in microseconds\n");
    std::printf("  %-34s %10s %10s %8s\n", "", "at 100", "at 100,000", "ratio");
    const auto row = [](const char *name, double few, double many) {
        std::printf("  %-34s %10.2f %10.2f %8.2f\n", name, few, many, many / few);
    };
    row("store", small.store, large.store);
    row("store with a budget for bodies", small.withBudget, large.withBudget);
    row("store with the list open", small.withOpenList, large.withOpenList);
    row("array with a snapshot (peer)", small.plain, large.plain);
    measureTyping();
    return 0;
}
