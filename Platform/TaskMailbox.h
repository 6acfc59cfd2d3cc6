#pragma once

#include <QtCore/QObject>

#include <functional>
#include <mutex>
#include <vector>

class QThread;

namespace Quorvix {

/// A queue of tasks for one thread, open only while that thread can run them. Its owner must not destroy it
/// while another thread may post.
class TaskMailbox
{
public:
    /// Lives in the thread of the tasks while the mailbox is open. Objects that need that thread can be its
    /// children.
    using Receiver = QObject;

    /// Starts to deliver to @p thread, first the tasks that were posted before.
    void open(QThread *thread);
    /// Stops delivery and returns the receiver; the caller deletes it, which drops the remaining tasks. Null
    /// when the mailbox is closed.
    [[nodiscard]] Receiver *close();
    /// Accepts tasks again and keeps them until open().
    void reset();

    /// Delivers later, in order; keeps the task when not yet open, drops it when closed. Any thread.
    void post(std::function<void()> task);

    /// The receiver; it may be used in its own thread only.
    [[nodiscard]] Receiver *receiver() const { return m_receiver; }

private:
    std::mutex m_mutex;
    Receiver *m_receiver = nullptr;
    bool m_ended = false;
    std::vector<std::function<void()>> m_pendingTasks;
};

} // namespace Quorvix
