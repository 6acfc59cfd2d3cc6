#pragma once

#include "Platform/PlatformGlobal.h"

namespace Quorvix {

/// The end of the application, before which our threads have to end: Qt's own objects go then.
namespace ApplicationEnd {

using Routine = void (*)();

/// Calls @p routine when the current application ends: when it is destroyed, or when its thread calls exit()
/// or returns from main() without that. The routine may be called twice. In the application's thread.
QUORVIX_INTERNAL_EXPORT void call(Routine routine);

} // namespace ApplicationEnd

} // namespace Quorvix
