#pragma once

#include "Platform/PlatformGlobal.h"

#include <functional>

namespace Quorvix {

/// The thread for work that takes too long for the main thread. It starts with the first work and ends with
/// the application.
///
/// It is not a thread of Qt's global pool: there our work would wait behind the host's, and memory would be
/// left behind in each thread of the pool.
namespace BackgroundThread {

/// Runs @p work in this thread, in order. Work that has not begun when the application ends is dropped, and
/// so is work that is posted while there is no application. Any thread.
QUORVIX_INTERNAL_EXPORT void post(std::function<void()> work);

} // namespace BackgroundThread

} // namespace Quorvix
