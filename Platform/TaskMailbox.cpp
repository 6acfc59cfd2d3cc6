#include "Platform/TaskMailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QThread>

#include <utility>

namespace Quorvix {

namespace {

/// The tasks of one event. They delay the events of others by some tens of microseconds, as long as no host
/// works in them.
constexpr int largestBatch = 16;

class FunctionTask final : public MailboxTask
{
public:
    explicit FunctionTask(std::function<void()> function) : m_function(std::move(function)) {}

    void run() override { m_function(); }

private:
    const std::function<void()> m_function;
};

class BatchEvent final : public QEvent
{
public:
    explicit BatchEvent(quint64 batchNumber) : QEvent(QEvent::User), batch(batchNumber) {}

    const quint64 batch;
};

} // namespace

MailboxTask::~MailboxTask() = default;

class TaskMailbox::BatchReceiver final : public QObject
{
public:
    explicit BatchReceiver(TaskMailbox &mailbox) : m_mailbox(mailbox) {}

protected:
    void customEvent(QEvent *event) override
    {
        m_mailbox.runBatch(static_cast<const BatchEvent *>(event)->batch);
    }

private:
    TaskMailbox &m_mailbox;
};

TaskMailbox::Receiver *TaskMailbox::open(QThread *thread)
{
    const std::scoped_lock lock(m_postMutex);
    m_receiver = new BatchReceiver(*this);
    m_receiver->moveToThread(thread);
    ensureEvent();
    return m_receiver;
}

TaskMailbox::Remains TaskMailbox::close()
{
    const std::scoped_lock lock(m_postMutex, m_queueMutex);
    Remains remains{std::exchange(m_receiver, nullptr), {}};
    if (!remains.receiver)
        return remains;
    for (Entry &entry : m_queue)
        remains.tasks.push_back(std::move(entry.task));
    m_queue.clear();
    // A thread that has not ended in time may still run its last batch. The next tasks are not for it.
    ++m_lastBatch;
    m_room = 0;
    return remains;
}

/// Posts an event for the tasks that wait, if there is none that has room for more. The caller holds the lock
/// of posting.
void TaskMailbox::ensureEvent()
{
    std::unique_lock lock(m_queueMutex);
    if (!m_receiver || m_queue.empty() || m_room > 0)
        return;
    m_room = largestBatch;
    auto *const event = new BatchEvent(++m_lastBatch);
    lock.unlock();
    QCoreApplication::postEvent(m_receiver, event);
}

bool TaskMailbox::post(MailboxTaskPtr task)
{
    const std::scoped_lock lock(m_postMutex);
    add(std::move(task));
    return m_receiver != nullptr;
}

bool TaskMailbox::post(std::vector<MailboxTaskPtr> tasks)
{
    const std::scoped_lock lock(m_postMutex);
    for (MailboxTaskPtr &task : tasks)
        add(std::move(task));
    return m_receiver != nullptr;
}

/// Adds a task, and posts an event if the last one has no room for it. The caller holds the lock of posting.
void TaskMailbox::add(MailboxTaskPtr task)
{
    std::unique_lock lock(m_queueMutex);
    const bool needsEvent = m_receiver && m_room == 0;
    if (needsEvent) {
        ++m_lastBatch;
        m_room = largestBatch;
    }
    if (m_receiver)
        --m_room;
    const BatchNumber batch = m_lastBatch;
    m_queue.push_back({std::move(task), batch});
    lock.unlock();
    if (needsEvent)
        QCoreApplication::postEvent(m_receiver, new BatchEvent(batch));
}

bool TaskMailbox::post(std::function<void()> function)
{
    return post(std::make_shared<FunctionTask>(std::move(function)));
}

void TaskMailbox::runBatch(BatchNumber batch)
{
    std::unique_lock lock(m_queueMutex);
    if (batch == m_lastBatch)
        m_room = 0;
    const bool hasNoOtherEvent = m_queue.size() > 1 && batch == m_lastBatch;
    lock.unlock();
    // A task can run an event loop of its own, which has to go on with the next ones.
    if (hasNoOtherEvent) {
        const std::scoped_lock postLock(m_postMutex);
        ensureEvent();
    }
    while (const MailboxTaskPtr task = takeFirst(batch)) {
        if (!std::exchange(task->m_isDone, true))
            task->run();
    }
}

MailboxTaskPtr TaskMailbox::takeFirst(BatchNumber batch)
{
    const std::scoped_lock lock(m_queueMutex);
    if (m_queue.empty() || m_queue.front().batch > batch)
        return nullptr;
    MailboxTaskPtr task = std::move(m_queue.front().task);
    m_queue.pop_front();
    return task;
}

void TaskMailbox::reportWaitingTasks()
{
    std::vector<MailboxTaskPtr> waiting;
    {
        const std::scoped_lock lock(m_queueMutex);
        for (const Entry &entry : m_queue)
            waiting.push_back(entry.task);
    }
    for (const MailboxTaskPtr &task : waiting) {
        if (!task->m_isDone)
            task->m_isDone = task->report();
    }
}

bool TaskMailbox::hasWaitingTasks() const
{
    const std::scoped_lock lock(m_queueMutex);
    return !m_queue.empty();
}

} // namespace Quorvix
