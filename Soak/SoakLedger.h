#pragma once

#include "Soak/SoakPlan.h"

#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <atomic>
#include <memory>
#include <mutex>

/// Who started an exchange, and where.
enum class SoakSource { SessionOnMain, SessionOnThread, ManagerOnMain, ManagerOnThread };

/// One exchange on its way. Shared by all that take part in it.
struct SoakExchange
{
    SoakPlan plan;
    QUrl url;
    SoakSource source{};
    /// How often the recorder had been cleared when the exchange began.
    quint64 clears = 0;
    std::atomic<int> completions = 0;
    /// Set before the exchange is cancelled.
    std::atomic<bool> isCancelled = false;
};
/// Cancelled exchanges are cancelled at most so many milliseconds after their start: at once, soon, or much
/// later.
inline constexpr int latestCancels[] = {1, 10, 60, 1000};

using SoakExchangePtr = std::shared_ptr<SoakExchange>;

/// What became of an exchange.
enum class SoakVerdict {
    /// All bytes and the status are those that the server has sent.
    Right,
    /// There is an error that says why not.
    Told,
    Cancelled,
    /// What was edited at the breakpoint has arrived.
    Edited,
    /// A right answer is lost with a connection that broke in another exchange. Qt fails all requests that
    /// wait when one connection breaks, and repeats one that it has sent on a broken connection, but not for
    /// ever.
    Beside,
    /// The host got something else without an error, as from Qt, but the trace has the error.
    OnlyTraced,
    /// Something else arrived, and nobody can tell: Qt takes it for the whole body and shows only that.
    Untold,
    /// Something else arrived, and nobody is told, although the error can be seen.
    Silent,
    /// Any other violation.
    Wrong,
};

/// Counts what happens. Any thread.
class SoakLedger final
{
public:
    static constexpr int verdicts = int(SoakVerdict::Wrong) + 1;

    explicit SoakLedger(quint64 seed) : m_seed(seed) {}

    /// The next exchange, unless enough are running.
    [[nodiscard]] SoakExchangePtr begin(quint16 port, SoakSource source);
    /// Enters the verdict; @p detail explains a bad one. Called once for each exchange.
    void end(const SoakExchange &exchange, SoakVerdict verdict, const QString &detail = {});
    /// Counts and prints something that must not happen.
    void complain(const QString &problem);

    [[nodiscard]] qsizetype running() const;
    /// What is running, for a complaint.
    [[nodiscard]] QString describeRunning() const;
    [[nodiscard]] quint64 ended() const;
    [[nodiscard]] qint64 receivedBytes() const { return m_receivedBytes; }
    void countReceived(qsizetype bytes) { m_receivedBytes += bytes; }
    [[nodiscard]] int problems() const { return m_problems; }

    /// How often the recorder was cleared.
    [[nodiscard]] quint64 clears() const { return m_clears; }
    /// To be called when the recorder was cleared.
    void countClear() { ++m_clears; }

    /// Complains if more than very few requests of sessions fail beside others: a session sends those again
    /// that Qt has not sent, unless they have a body.
    void checkBeside();
    /// A table of the verdicts for each fault, for sessions and for managers.
    void print() const;

private:
    struct Row
    {
        quint64 counts[verdicts] = {};
    };

    mutable std::mutex m_mutex;
    const quint64 m_seed;
    quint64 m_lastNumber = 0;
    quint64 m_ended = 0;
    /// Requests of sessions that have no body or one that is not empty, and those of them that failed beside
    /// others.
    quint64 m_repeatableOfSessions = 0;
    quint64 m_besideOfSessions = 0;
    qsizetype m_runningBytes = 0;
    QMap<quint64, SoakExchange *> m_running;
    QMap<QPair<int, SoakFault>, Row> m_rows;
    std::atomic<qint64> m_receivedBytes = 0;
    std::atomic<quint64> m_clears = 0;
    std::atomic<int> m_problems = 0;
};
