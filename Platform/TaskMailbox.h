#pragma once

#include <QtCore/QObject>

#include <functional>
#include <mutex>
#include <vector>

class QThread;

namespace Quorvix {

/// A queue of tasks for one thread, open only while that thread can run them. Never destroyed by its owner
/// while another thread may post.
class TaskMailbox
{
public:
    /// What the tasks' thread owns while the mailbox is open; what needs that thread can be made its child.
    using Receiver = QObject;

    /// Starts to deliver to @p thread, first whatever was posted early.
    void open(QThread *thread);
    /// Stops delivery and hands over the receiver, whose deletion drops what is still posted. Null when
    /// closed.
    [[nodiscard]] Receiver *close();
    /// Accepts tasks again, to be kept until open().
    void reset();

    /// Delivers later, in order; keeps the task when not yet open, drops it when closed. Any thread.
    void post(std::function<void()> task);

    /// The receiver, to be used in its own thread only.
    [[nodiscard]] Receiver *receiver() const { return m_receiver; }

private:
    std::mutex m_mutex;
    Receiver *m_receiver = nullptr;
    bool m_ended = false;
    std::vector<std::function<void()>> m_early;
};

} // namespace Quorvix
