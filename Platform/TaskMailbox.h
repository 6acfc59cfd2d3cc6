#pragma once

#include <QtCore/QObject>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class QThread;

namespace Quorvix {

/// Something to do in another thread, once.
class MailboxTask
{
public:
    MailboxTask() = default;
    virtual ~MailboxTask();
    Q_DISABLE_COPY_MOVE(MailboxTask)

    /// Does it. In the thread of the mailbox.
    virtual void run() = 0;
    /// Does the part of it that remains when the application ends before its turn. Returns whether it is as
    /// good as run then. In the thread of the mailbox.
    virtual bool report() { return false; }

private:
    friend class TaskMailbox;
    /// In the thread of the mailbox only.
    bool m_isDone = false;
};

/// Tasks may share an object that lives as long as one of them.
using MailboxTaskPtr = std::shared_ptr<MailboxTask>;

/// A queue of tasks for one thread, open only while that thread can run them. While it is closed, tasks wait
/// until it opens again. It lives as long as the process.
///
/// To wake an event loop takes longer than most tasks. So one event stands for several tasks, up to a number
/// after which the events of others have their turn. A task does not run later than an event that is posted
/// to the same event loop after it, unless a task before it runs an event loop of its own.
class TaskMailbox
{
public:
    /// Lives in the thread of the tasks while the mailbox is open. Objects that need that thread can be its
    /// children.
    using Receiver = QObject;

    /// What is left of an open mailbox. The owner destroys all of it, and no task while it holds a lock: what
    /// a host has captured can post others.
    struct Remains
    {
        /// Null if the mailbox was closed already.
        Receiver *receiver = nullptr;
        /// The tasks that have not run.
        std::vector<MailboxTaskPtr> tasks;
    };

    /// Starts to deliver to @p thread, first the tasks that wait. Returns the receiver, which belongs to the
    /// mailbox until close().
    Receiver *open(QThread *thread);
    /// Stops delivery.
    [[nodiscard]] Remains close();

    /// Delivers later, in order; keeps the task while the mailbox is closed. Returns whether it is open. Any
    /// thread.
    bool post(MailboxTaskPtr task);
    /// Posts several tasks, which make one event at most while there is room. Any thread.
    bool post(std::vector<MailboxTaskPtr> tasks);
    /// Posts a function. Any thread.
    bool post(std::function<void()> function);

    /// Calls MailboxTask::report() for the tasks that have not run, in order. In the thread of the tasks.
    void reportWaitingTasks();

    /// Whether tasks wait to be run. Any thread.
    [[nodiscard]] bool hasWaitingTasks() const;

private:
    class BatchReceiver;
    /// The tasks that share an event have the same number, greater than that of those before.
    using BatchNumber = quint64;
    struct Entry
    {
        MailboxTaskPtr task;
        BatchNumber batch;
    };

    void add(MailboxTaskPtr task);
    void ensureEvent();
    void runBatch(BatchNumber batch);
    [[nodiscard]] MailboxTaskPtr takeFirst(BatchNumber batch);

    /// Held while an event is posted and while the mailbox opens and closes; before the other one.
    std::mutex m_postMutex;
    Receiver *m_receiver = nullptr;

    /// Held for moments only: the thread of the tasks never waits while another one wakes it.
    mutable std::mutex m_queueMutex;
    std::deque<Entry> m_queue;
    BatchNumber m_lastBatch = 0;
    /// How many tasks may still join the last batch, whose event has not arrived.
    int m_room = 0;
};

} // namespace Quorvix
