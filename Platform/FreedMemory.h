#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

#include <memory>
#include <utility>

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

/// Like discard() for a value of any type.
QUORVIX_INTERNAL_EXPORT void discardShared(std::shared_ptr<const void> value, qsizetype bytes);

/// Destroys a value of about @p bytes and notes it. Freeing hundreds of megabytes takes long, so a large
/// value is destroyed on another thread, a moment after what else shares it has been released. Main thread
/// only.
template<typename Value>
void discard(Value value, qsizetype bytes)
{
    discardShared(std::make_shared<const Value>(std::move(value)), bytes);
}

} // namespace FreedMemory

} // namespace Quorvix
