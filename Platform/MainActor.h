#pragma once

#include "Platform/ApplicationEnd.h"
#include "Platform/PlatformGlobal.h"

#include <functional>
#include <memory>
#include <vector>

namespace Quorvix {

class MailboxTask;

/// The application's thread: the one in which its QCoreApplication lives.
namespace MainActor {

/// Runs @p task on the application's thread, in a later turn of its event loop; tasks run in the order in
/// which they were scheduled. While there is no application they wait for the next one. Those that have not
/// run when it ends are dropped. Returns at once. Any thread.
QUORVIX_INTERNAL_EXPORT void schedule(std::function<void()> task);

/// Like schedule(), for a task that only reports something to the inspector: flushReports() can run it at the
/// end of the application. Any thread.
void scheduleReport(std::function<void()> task);
/// Schedules @p task. If it has not run at the end of the application, flushReports() runs @p report in its
/// place, which must not call the host. Any thread.
void scheduleReport(std::function<void()> task, std::function<void()> report);
/// Schedules @p task, and its MailboxTask::report() for flushReports(): for what many exchanges need. Any
/// thread.
void post(std::shared_ptr<MailboxTask> task);
/// Schedules several tasks with one event. Any thread.
void post(std::vector<std::shared_ptr<MailboxTask>> tasks);
/// Runs the reports whose tasks have not run, in the order in which they were scheduled. Their tasks are as
/// good as run then. On the application's thread, at its end.
void flushReports();

/// Calls @p routine when the application ends, before the tasks that have not run are dropped; otherwise like
/// ApplicationEnd::call(). On the application's thread.
void callAtEnd(ApplicationEnd::Routine routine);

/// Whether the caller runs on the application's thread. False when there is no application.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT bool isCurrent();

} // namespace MainActor

} // namespace Quorvix
