#pragma once

#include "Platform/BackgroundThread.h"
#include "Platform/FreedMemory.h"
#include "Platform/MainActor.h"
#include "Platform/QXTaskProgress.h"

#include <memory>
#include <utility>

/// Converts bodies on another thread for as long as their model lives. Main thread only.
class QXBodyConversions
{
public:
    QXBodyConversions() = default;
    ~QXBodyConversions() { m_progress->cancel(); }
    Q_DISABLE_COPY_MOVE(QXBodyConversions)

    /// Calls @p work for a body of @p size bytes on another thread and then @p finish with its result on the
    /// main thread. Does not call @p finish after this object is deleted, and cancels @p work then.
    template<typename Work, typename Finish>
    void start(qsizetype size, Work work, Finish finish)
    {
        Quorvix::BackgroundThread::post(
            [progress = m_progress, size, work = std::move(work), finish = std::move(finish)] {
                if (progress->isCancelled())
                    return;
                Quorvix::MainActor::schedule([progress, size, finish, outcome = work(progress.get())] {
                    if (!progress->isCancelled())
                        finish(outcome);
                    else
                        Quorvix::FreedMemory::discard(outcome, 2 * size);
                });
            },
            [progress = m_progress] { progress->cancel(); });
    }

private:
    /// Shared with the work on another thread.
    std::shared_ptr<QXTaskProgress> m_progress = std::make_shared<QXTaskProgress>();
};
