#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

namespace Quorvix {

/// Returns memory to the system after large objects were destroyed. Allocators keep it otherwise, and a
/// script engine keeps the objects themselves until its next collection.
namespace FreedMemory {

/// Posted on the main thread before memory is returned. Observers release what they keep without need.
inline const QString willReturn = QStringLiteral("QuorvixMemoryWillReturn");

/// Notes that about @p bytes were freed, or are freed in this turn of the event loop. A large amount is
/// returned to the system a moment later, once for all notes until then; that work is done on another
/// thread, but allocations of the main thread may wait for it, about 0.1 ms for each megabyte. Small amounts
/// are ignored. Main thread only.
QUORVIX_INTERNAL_EXPORT void note(qsizetype bytes);

} // namespace FreedMemory

} // namespace Quorvix
