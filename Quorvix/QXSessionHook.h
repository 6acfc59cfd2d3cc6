#pragma once

#include "Quorvix/QuorvixGlobal.h"

class ObjectClass;

/// Captures the data tasks of a session class by exchanging its data-task method for one that records.
namespace QXSessionHook {

/// Exchanges the methods of NSURLSession, once per process, for good. Any thread.
QUORVIX_INTERNAL_EXPORT void install();

/// Exchanges the methods of @p sessionClass; does nothing when it lacks one of them, nor a second time.
QUORVIX_INTERNAL_EXPORT void exchange(ObjectClass &sessionClass);

} // namespace QXSessionHook
