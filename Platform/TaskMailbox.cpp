#include "Platform/TaskMailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QThread>

#include <utility>

namespace Quorvix {

namespace {

class TaskEvent final : public QEvent
{
public:
    explicit TaskEvent(std::function<void()> task) : QEvent(QEvent::User), m_task(std::move(task)) {}

    void run() { m_task(); }

private:
    std::function<void()> m_task;
};

class TaskReceiver final : public QObject
{
protected:
    void customEvent(QEvent *event) override { static_cast<TaskEvent *>(event)->run(); }
};

} // namespace

TaskMailbox::Receiver *TaskMailbox::open(QThread *thread)
{
    const std::scoped_lock lock(m_mutex);
    m_receiver = new TaskReceiver;
    m_receiver->moveToThread(thread);
    for (auto &task : m_pendingTasks)
        QCoreApplication::postEvent(m_receiver, new TaskEvent(std::move(task)));
    m_pendingTasks.clear();
    return m_receiver;
}

TaskMailbox::Receiver *TaskMailbox::close()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_receiver, nullptr);
}

void TaskMailbox::post(std::function<void()> task)
{
    const std::scoped_lock lock(m_mutex);
    if (m_receiver)
        QCoreApplication::postEvent(m_receiver, new TaskEvent(std::move(task)));
    else
        m_pendingTasks.push_back(std::move(task));
}

bool TaskMailbox::hasWaitingTasks() const
{
    const std::scoped_lock lock(m_mutex);
    return !m_pendingTasks.empty();
}

} // namespace Quorvix
