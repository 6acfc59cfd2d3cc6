#pragma once

#include "Platform/QXTaskProgress.h"

#include <QtCore/QBasicTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

/// Performs what the user asks of a model, one task at a time: at once if it takes no longer than a frame or
/// two, otherwise on another thread, with a progress that QXProgressCard shows. Main thread only.
///
/// A task that is cancelled, or whose model is destroyed, has no result.
class QXBackgroundTask : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of the models")
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    /// What the task does, for people. It stays after the end.
    Q_PROPERTY(QString title READ title NOTIFY isRunningChanged)
    /// From 0 to 1.
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)

    struct Ignore
    {
        template<typename Outcome>
        void operator()(Outcome && /*outcome*/) const
        {
        }
    };

    /// A result that nobody has got yet.
    template<typename Outcome, typename Discard>
    struct Unclaimed
    {
        explicit Unclaimed(Discard d) : discard(std::move(d)) {}
        ~Unclaimed()
        {
            if (outcome)
                discard(std::move(*outcome));
        }
        Q_DISABLE_COPY_MOVE(Unclaimed)

        Discard discard;
        std::optional<Outcome> outcome;
    };

public:
    /// Every task is done within a frame or two for an input of this many bytes, also on a phone.
    static constexpr qsizetype largestSynchronousSize = 131'072;

    explicit QXBackgroundTask(QObject *parent = nullptr);
    ~QXBackgroundTask() override;

    /// Calls @p work for an input of @p size bytes, and then @p finish with its result. For a small input,
    /// @p work is called at once with null; otherwise with the progress that it reports to, on another
    /// thread. If it is fast, this function still returns after @p finish; otherwise @p finish is called
    /// later.
    ///
    /// @p work must not refer to anything that the main thread can change. Does nothing while a task is
    /// running, because the user has to see one result before asking for the next.
    ///
    /// @p discard gets the result of a task that was cancelled when it was done already, on any thread.
    template<typename Work, typename Finish, typename Discard = Ignore>
    void perform(qsizetype size, const QString &title, Work work, Finish finish, Discard discard = {})
    {
        if (m_run)
            return;
        if (size <= largestSynchronousSize)
            return finish(work(static_cast<QXTaskProgress *>(nullptr)));
        using Outcome = std::invoke_result_t<Work &, QXTaskProgress *>;
        const auto unclaimed = std::make_shared<Unclaimed<Outcome, Discard>>(std::move(discard));
        run(
            title, size <= largestAwaitedSize ? m_longestWait : 0,
            [unclaimed, work = std::move(work)](QXTaskProgress &progress) {
                unclaimed->outcome.emplace(work(&progress));
            },
            [unclaimed, finish = std::move(finish)] {
                finish(*std::exchange(unclaimed->outcome, std::nullopt));
            });
    }

    /// Sets how long perform() waits for a task that may be fast, in milliseconds.
    void setLongestWait(int wait) noexcept { m_longestWait = wait; }

    [[nodiscard]] bool isRunning() const noexcept { return m_isShown; }
    [[nodiscard]] const QString &title() const noexcept { return m_title; }
    [[nodiscard]] double progress() const noexcept { return m_progress; }

    /// Ends the task without a result.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void isRunningChanged();
    void progressChanged();
    /// Emitted after cancel() has ended a task.
    void cancelled();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    struct Run;

    /// How long the main thread waits for a task, in milliseconds. Together with the event that starts the
    /// task and the frame that shows its result, the value here is less than the 50 ms after which people
    /// notice a pause.
    int m_longestWait = 25;
    /// No task is done in that time for an input of more bytes.
    static constexpr qsizetype largestAwaitedSize = 4'000'000;

    void run(const QString &title, int wait, std::function<void(QXTaskProgress &)> work,
             std::function<void()> finish);
    void end();
    void abandon();
    void setProgress(double progress);

    std::shared_ptr<Run> m_run;
    bool m_isShown = false;
    QString m_title;
    double m_progress = 0;
    QBasicTimer m_timer;
};
