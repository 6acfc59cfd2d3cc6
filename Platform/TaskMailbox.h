#pragma once

#include <QtCore/QObject>

#include <functional>
#include <mutex>
#include <vector>

class QThread;

namespace Quorvix {

/// A queue of tasks for one thread, open only while that thread can run them. While it is closed, tasks wait
/// until it opens again. Its owner must not destroy it while another thread may post.
class TaskMailbox
{
public:
    /// Lives in the thread of the tasks while the mailbox is open. Objects that need that thread can be its
    /// children.
    using Receiver = QObject;

    /// Starts to deliver to @p thread, first the tasks that wait. Returns the receiver, which belongs to the
    /// mailbox until close().
    Receiver *open(QThread *thread);
    /// Stops delivery and returns the receiver; the caller deletes it, which drops the tasks that have not
    /// run. Null when the mailbox is closed.
    [[nodiscard]] Receiver *close();

    /// Delivers later, in order; keeps the task while the mailbox is closed. Any thread.
    void post(std::function<void()> task);

    /// Whether tasks wait until the mailbox opens. Any thread.
    [[nodiscard]] bool hasWaitingTasks() const;

private:
    mutable std::mutex m_mutex;
    Receiver *m_receiver = nullptr;
    std::vector<std::function<void()>> m_pendingTasks;
};

} // namespace Quorvix
