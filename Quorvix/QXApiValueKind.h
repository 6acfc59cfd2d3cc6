#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

/// What a value of a JSON text is.
enum class QXApiValueKind { object, array, string, number, boolean, null };

/// What the user calls the kind. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString displayName(QXApiValueKind kind);
