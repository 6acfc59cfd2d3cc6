#pragma once

#include "Platform/PlatformGlobal.h"

#include <functional>

namespace Quorvix {

/// The application's thread: the one in which its QCoreApplication lives.
namespace MainActor {

/// Runs @p task on the application's thread, in a later turn of its event loop; tasks run in the order in
/// which they were scheduled. While there is no application they wait for the next one. Those that have not
/// run when it ends are dropped. Returns at once. Any thread.
QUORVIX_INTERNAL_EXPORT void schedule(std::function<void()> task);

/// Whether the caller runs on the application's thread. False when there is no application.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT bool isCurrent();

} // namespace MainActor

} // namespace Quorvix
