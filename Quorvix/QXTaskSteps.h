#pragma once

#include "Quorvix/QXTaskProgress.h"

#include "Platform/NSError.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <limits>

/// How a long function reports to a progress that may be absent: it tells each step, and only about every
/// four thousandth part of the work is reported. A step costs one comparison. For one thread.
class QXTaskSteps final
{
public:
    /// The work has @p total parts in any unit; those of @p before are already done. All of them belong to
    /// the current stage of @p progress. A total of 0 means: nothing is reported, only asked. Null means:
    /// nobody cancels, either.
    explicit QXTaskSteps(QXTaskProgress *progress = nullptr, qsizetype total = 0,
                         qsizetype before = 0) noexcept
        : m_progress(progress), m_total(total + before), m_before(before),
          m_next(progress ? 0 : std::numeric_limits<qsizetype>::max())
    {
    }

    /// Tells that @p done parts are done. False once the task is cancelled, from then on.
    [[nodiscard]] bool goOn(qsizetype done) noexcept { return done < m_next || report(done); }
    /// Asks, and reports nothing. For work inside of one part, such as to sort, during which goOn(done) would
    /// not ask again.
    [[nodiscard]] bool goOn() const noexcept { return !m_progress || !m_progress->isCancelled(); }

private:
    bool report(qsizetype done) noexcept
    {
        constexpr qsizetype unreportedInterval = 65'536;
        if (m_total > 0)
            m_progress->report(std::min(m_before + done, m_total), m_total);
        const qsizetype interval = m_total > 0 ? m_total / 4096 + 1 : unreportedInterval;
        m_next = m_progress->isCancelled() ? 0 : done + interval;
        return m_next != 0;
    }

    QXTaskProgress *m_progress;
    qsizetype m_total;
    qsizetype m_before;
    qsizetype m_next;
};

/// Begins the next stage of a task; see QXTaskProgress::beginStage(). False once the task is cancelled.
[[nodiscard]] inline bool beginStage(QXTaskProgress *progress, double end) noexcept
{
    if (progress)
        progress->beginStage(end);
    return !progress || !progress->isCancelled();
}

[[nodiscard]] inline bool isCancelled(const QXTaskProgress *progress) noexcept
{
    return progress && progress->isCancelled();
}

/// Tells that the last stage is done.
inline void finish(QXTaskProgress *progress) noexcept
{
    if (progress)
        progress->report(1, 1);
}

/// What a cancelled task returns.
[[nodiscard]] inline Quorvix::NSError cancelledError()
{
    return {Quorvix::NSCocoaErrorDomain, Quorvix::NSUserCancelledError,
            QCoreApplication::translate("Quorvix", "cancelled")};
}
