#pragma once

#include "Quorvix/QXLogLevel.h"

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

/// The inspector's own diagnostic lines, written through the Qt logging category "Quorvix".
namespace QXLog {

/// The process-wide level; initially none. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QXLogLevel level() noexcept;
QUORVIX_INTERNAL_EXPORT void setLevel(QXLogLevel level) noexcept;

/// Writes @p message as it stands when @p level is switched on, here and for the category. A message of level
/// none is never written. Any thread.
QUORVIX_INTERNAL_EXPORT void log(QXLogLevel level, const QString &message);

/// The text that stands for a truth value in a log line.
[[nodiscard]] inline QLatin1StringView word(bool value)
{
    return value ? QLatin1StringView("true") : QLatin1StringView("false");
}

} // namespace QXLog
