#pragma once

#include "Platform/PlatformGlobal.h"

#include <functional>

namespace Quorvix {

/// Two threads for work that takes too long for the main thread: one for work that the program wants done,
/// and one for tasks that the user waits for, which never wait for the former. Each starts with its first
/// work and ends with the application.
///
/// They are not threads of Qt's global pool: there our work would wait behind the host's, and memory would be
/// left behind in each thread of the pool.
namespace BackgroundThread {

/// Runs @p work, in order. Work that has not begun when the application ends is dropped, and so is work that
/// is posted while there is no application. Any thread.
///
/// @p cancel asks the work to end soon. It is called when the application ends before the work does, in the
/// application's thread.
QUORVIX_INTERNAL_EXPORT void post(std::function<void()> work, std::function<void()> cancel = {});
/// Like post(), for a task that the user waits for, in the thread of these tasks.
QUORVIX_INTERNAL_EXPORT void postTask(std::function<void()> work, std::function<void()> cancel);
/// Runs @p work behind the tasks, if there has ever been one. Any thread.
void postBehindTasks(std::function<void()> work);

} // namespace BackgroundThread

} // namespace Quorvix
