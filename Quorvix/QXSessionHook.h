#pragma once

#include "Platform/PlatformGlobal.h"

namespace Quorvix {
class ObjectClass;
} // namespace Quorvix

/// Captures the data tasks of a session class: exchanges its data-task method for one that records.
namespace QXSessionHook {

/// Exchanges the methods of NSURLSession once and permanently. After that, every data task with a completion
/// handler is captured. QuorvixClient::shared() calls this function; a program without screens calls it
/// directly. Any thread.
QUORVIX_CORE_EXPORT void install();

/// Exchanges the methods of @p sessionClass. Does nothing if the class has no such method, or if a hook is
/// already installed.
void exchange(Quorvix::ObjectClass &sessionClass);

} // namespace QXSessionHook
