#include "Soak/SoakLedger.h"

#include "Examples/MonkeyRandom.h"

#include <cstdio>

namespace {

constexpr qsizetype mostRunning = 48;
/// Of contents and uploads, so that the memory stays bounded.
constexpr qsizetype mostRunningBytes = 60'000'000;
/// For each kind of exchange.
constexpr quint64 mostPrinted = 3;

bool isSession(SoakSource source)
{
    return source == SoakSource::SessionOnMain || source == SoakSource::SessionOnThread;
}

QString describe(const SoakExchange &exchange)
{
    static constexpr const char *sources[] = {"session on the main thread", "session on a thread",
                                              "manager on the main thread", "manager on a thread"};
    return QStringLiteral("%1 %2 by a %3%4")
        .arg(QString::fromLatin1(exchange.plan.method), exchange.url.toString(),
             QLatin1StringView(sources[int(exchange.source)]),
             exchange.isCancelled ? QStringLiteral(", cancelled") : QString());
}

} // namespace

SoakExchangePtr SoakLedger::begin(quint16 port, SoakSource source)
{
    const std::scoped_lock lock(m_mutex);
    if (m_running.size() >= mostRunning || m_runningBytes > mostRunningBytes)
        return nullptr;
    // Each exchange has random numbers of its own, so its plan does not depend on what the others do.
    MonkeyRandom random(m_seed * 1'000'003 + ++m_lastNumber);
    auto exchange = std::make_shared<SoakExchange>();
    exchange->plan = SoakPlan::make(random, m_lastNumber);
    exchange->url = exchange->plan.url(port);
    exchange->source = source;
    exchange->clears = m_clears;
    m_running.insert(m_lastNumber, exchange.get());
    m_runningBytes += exchange->plan.size + exchange->plan.uploadSize;
    return exchange;
}

void SoakLedger::end(const SoakExchange &exchange, SoakVerdict verdict, const QString &detail)
{
    quint64 count = 0;
    {
        const std::scoped_lock lock(m_mutex);
        if (m_running.remove(exchange.plan.number) == 0) {
            ++m_problems;
            std::printf("PROBLEM: ended twice: %s\n", qPrintable(describe(exchange)));
            return;
        }
        m_runningBytes -= exchange.plan.size + exchange.plan.uploadSize;
        ++m_ended;
        const bool sendsNothing = exchange.plan.hasUpload() && exchange.plan.uploadSize == 0;
        if (isSession(exchange.source) && !sendsNothing) {
            ++m_repeatableOfSessions;
            m_besideOfSessions += verdict == SoakVerdict::Beside ? 1 : 0;
        }
        count = ++m_rows[{isSession(exchange.source) ? 0 : 1, exchange.plan.fault}].counts[int(verdict)];
    }
    if (verdict < SoakVerdict::Silent)
        return;
    if (count > mostPrinted)
        ++m_problems;
    else
        complain(detail + QStringLiteral(": ") + describe(exchange));
}

void SoakLedger::complain(const QString &problem)
{
    ++m_problems;
    std::printf("PROBLEM: %s\n", qPrintable(problem));
    std::fflush(stdout);
}

qsizetype SoakLedger::running() const
{
    const std::scoped_lock lock(m_mutex);
    return m_running.size();
}

QString SoakLedger::describeRunning() const
{
    const std::scoped_lock lock(m_mutex);
    QStringList descriptions;
    for (const SoakExchange *exchange : m_running)
        descriptions.append(describe(*exchange));
    return descriptions.join(QStringLiteral("; "));
}

quint64 SoakLedger::ended() const
{
    const std::scoped_lock lock(m_mutex);
    return m_ended;
}

void SoakLedger::checkBeside()
{
    constexpr quint64 most = 500; // one of so many
    quint64 beside = 0;
    quint64 all = 0;
    {
        const std::scoped_lock lock(m_mutex);
        beside = m_besideOfSessions;
        all = m_repeatableOfSessions;
    }
    if (beside > 1 + all / most)
        complain(QStringLiteral("%1 of %2 requests of sessions fail beside others").arg(beside).arg(all));
}

void SoakLedger::print() const
{
    const std::scoped_lock lock(m_mutex);
    Row sums[2];
    const auto printRow = [](const char *source, const char *name, const Row &row) {
        std::printf("%-8s %-16s", source, name);
        for (const quint64 count : row.counts)
            std::printf(" %9llu", static_cast<unsigned long long>(count));
        std::printf("\n");
    };
    std::printf("\n%-8s %-16s %9s %9s %9s %9s %9s %9s %9s %9s %9s\n", "source", "server", "right", "error",
                "cancelled", "edited", "beside", "in trace", "untold", "SILENT", "WRONG");
    for (auto it = m_rows.cbegin(); it != m_rows.cend(); ++it) {
        const auto &[source, fault] = it.key();
        printRow(source == 0 ? "session" : "manager", SoakPlan::name(fault).constData(), it.value());
        for (int i = 0; i < verdicts; ++i)
            sums[source].counts[i] += it.value().counts[i];
    }
    printRow("session", "all", sums[0]);
    printRow("manager", "all", sums[1]);
}
