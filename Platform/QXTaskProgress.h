#pragma once

#include <QtCore/QtGlobal>

#include <atomic>
#include <utility>

/// How far a long task is, and whether somebody still wants its result. The thread that works reports and
/// asks; the thread that shows the progress reads and cancels. Any thread.
///
/// A task of several stages gives each its share: `beginStage(0.3)` says that what is reported next covers
/// the time up to 30 %. A task that is cancelled ends soon, and its result is not used.
class QXTaskProgress
{
public:
    /// The reports that follow count from the end of the last stage to @p end, a fraction of the whole task.
    /// Working thread only.
    void beginStage(double end) noexcept
    {
        m_stageBegin = std::exchange(m_hasStages, true) ? m_stageEnd : 0;
        m_stageEnd = end;
        m_fraction.store(m_stageBegin, std::memory_order_relaxed);
    }

    /// Reports that @p done of @p total parts of the stage are done, in any unit. Working thread only.
    void report(qsizetype done, qsizetype total) noexcept
    {
        const double part = total > 0 ? double(done) / double(total) : 1;
        m_fraction.store(m_stageBegin + (m_stageEnd - m_stageBegin) * part, std::memory_order_relaxed);
    }

    /// From 0 to 1.
    [[nodiscard]] double fraction() const noexcept { return m_fraction.load(std::memory_order_relaxed); }

    /// Asks the task to end early, without a result. Any thread.
    void cancel() noexcept { m_isCancelled.store(true, std::memory_order_relaxed); }
    /// Whether cancel() was called: a task looks here between its steps. Any thread.
    [[nodiscard]] bool isCancelled() const noexcept { return m_isCancelled.load(std::memory_order_relaxed); }

private:
    std::atomic<double> m_fraction = 0;
    std::atomic<bool> m_isCancelled = false;
    double m_stageBegin = 0;
    double m_stageEnd = 1;
    bool m_hasStages = false;
};
