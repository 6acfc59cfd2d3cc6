#pragma once

#include <QtCore/QByteArray>

#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace Quorvix {

class MailboxTask;
class NSURLResponse;

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

/// Takes back what this thread has made and another one needs no longer. It is destroyed in this thread, in a
/// later turn of its event loop, so that its memory serves the next exchange. Any thread.
void giveBack(std::optional<QByteArray> data, std::shared_ptr<const NSURLResponse> response);

/// The parent for objects that live in this thread and are deleted when it ends. In this thread only.
[[nodiscard]] QObject *parent();

/// Whether the application has ended, so that no completion handler may be called any more. In this thread
/// only.
[[nodiscard]] bool isEnding();

} // namespace LoadingThread

} // namespace Quorvix
