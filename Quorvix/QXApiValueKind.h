#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

/// The kind of a JSON value.
enum class QXApiValueKind { object, array, string, number, boolean, null };

/// The localised name of the kind, for display. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString displayName(QXApiValueKind kind);
