#pragma once

#include "Platform/PlatformGlobal.h"

namespace Quorvix {
class ObjectClass;
} // namespace Quorvix

/// Captures the data tasks of a session class by exchanging its data-task method for one that records.
namespace QXSessionHook {

/// Exchanges the methods of NSURLSession, once per process, for good: from then on every data task that is
/// made with a completion handler is captured. QuorvixClient::shared() calls it; a program without screens
/// does so itself. Any thread.
QUORVIX_CORE_EXPORT void install();

/// Exchanges the methods of @p sessionClass; does nothing when it lacks one of them, nor a second time.
void exchange(Quorvix::ObjectClass &sessionClass);

} // namespace QXSessionHook
