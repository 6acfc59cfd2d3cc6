#pragma once

#include <functional>

class QObject;

namespace Quorvix {

/// The thread in which all sessions load. It starts with the first task and ends with the application.
namespace LoadingThread {

/// Runs @p task in this thread; tasks run in order. A task that is posted before there is an application
/// waits for it, and a task that is posted after its end is dropped. Any thread.
void post(std::function<void()> task);

/// The parent for objects that live in this thread and are deleted when it ends. In this thread only.
[[nodiscard]] QObject *parent();

} // namespace LoadingThread

} // namespace Quorvix
