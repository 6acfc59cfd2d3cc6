#include "Controls/QXBackgroundTask.h"

#include "Platform/BackgroundThread.h"
#include "Platform/MainActor.h"

#include <QtCore/QPointer>
#include <QtCore/QSemaphore>
#include <QtCore/QTimerEvent>

using namespace Quorvix;

namespace {

constexpr int frameInterval = 33; // milliseconds

} // namespace

/// One task. The thread that works uses the progress and the semaphore only.
struct QXBackgroundTask::Run
{
    QXTaskProgress progress;
    QSemaphore done;
    /// Null after the end of the task. Main thread only.
    std::function<void()> finish;
};

QXBackgroundTask::QXBackgroundTask(QObject *parent) : QObject(parent) {}

QXBackgroundTask::~QXBackgroundTask()
{
    if (m_run)
        abandon();
}

void QXBackgroundTask::run(const QString &title, int wait, std::function<void(QXTaskProgress &)> work,
                           std::function<void()> finish)
{
    const auto run = std::make_shared<Run>();
    run->finish = std::move(finish);
    m_run = run;
    BackgroundThread::postTask(
        [run, work = std::move(work)] {
            if (run->progress.isCancelled())
                return;
            work(run->progress);
            run->done.release();
            MainActor::schedule([run] {
                if (const auto finishRun = std::exchange(run->finish, nullptr))
                    finishRun();
            });
        },
        [run] { run->progress.cancel(); });
    const bool isDone = run->done.tryAcquire(1, wait);
    run->finish = [self = QPointer(this), finish = std::move(run->finish)] {
        self->end();
        // A slot of the signals may have deleted the model.
        if (self)
            finish();
    };
    if (isDone)
        return std::exchange(run->finish, nullptr)();
    m_title = title;
    m_isShown = true;
    setProgress(0);
    m_timer.start(frameInterval, this);
    Q_EMIT isRunningChanged();
}

void QXBackgroundTask::end()
{
    m_run.reset();
    m_timer.stop();
    if (!std::exchange(m_isShown, false))
        return;
    const QPointer self(this);
    setProgress(1);
    if (self)
        Q_EMIT isRunningChanged();
}

/// Makes the task end soon, and without a result. A result that is there already can be large, and is
/// destroyed by another thread.
void QXBackgroundTask::abandon()
{
    m_run->progress.cancel();
    BackgroundThread::post([finish = std::exchange(m_run->finish, nullptr)] {});
    m_run.reset();
}

void QXBackgroundTask::cancel()
{
    if (!m_run)
        return;
    abandon();
    m_timer.stop();
    m_isShown = false;
    const QPointer self(this);
    Q_EMIT isRunningChanged();
    if (self)
        Q_EMIT cancelled();
}

void QXBackgroundTask::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        setProgress(m_run->progress.fraction());
    else
        QObject::timerEvent(event);
}

void QXBackgroundTask::setProgress(double progress)
{
    if (std::exchange(m_progress, progress) != progress)
        Q_EMIT progressChanged();
}
