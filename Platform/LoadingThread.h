#pragma once

#include <functional>

class QObject;

namespace Quorvix {

/// The thread in which all sessions load. It starts with the first task and ends with the application.
namespace LoadingThread {

/// Runs @p task in this thread; tasks run in order. A task that is posted while there is no application
/// starts with the next one. Those that have not run when it ends are dropped. Any thread.
void post(std::function<void()> task);

/// The parent for objects that live in this thread and are deleted when it ends. In this thread only.
[[nodiscard]] QObject *parent();

/// Whether the application has ended, so that no completion handler may be called any more. In this thread
/// only.
[[nodiscard]] bool isEnding();

} // namespace LoadingThread

} // namespace Quorvix
