#pragma once

#include <functional>
#include <memory>

class QObject;

namespace Quorvix {

class MailboxTask;

/// The thread in which all sessions load. It starts with the first task and ends with the application.
namespace LoadingThread {

/// Runs @p task in this thread; tasks run in order. A task that is posted while there is no application
/// starts with the next one. Those that have not run when it ends are dropped. Any thread.
void post(std::function<void()> task);

/// Hands a task to the main thread, like MainActor::post(). In this thread, it waits for others that end in
/// the same turn of the event loop, so that the main thread wakes once for all of them. Any thread.
void deliver(std::shared_ptr<MailboxTask> task);
/// Ends the wait of deliver(), before something that may take long. In this thread only.
void deliverNow();

/// The parent for objects that live in this thread and are deleted when it ends. In this thread only.
[[nodiscard]] QObject *parent();

/// Whether the application has ended, so that no completion handler may be called any more. In this thread
/// only.
[[nodiscard]] bool isEnding();

} // namespace LoadingThread

} // namespace Quorvix
