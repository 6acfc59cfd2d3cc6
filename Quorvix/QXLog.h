#pragma once

#include "Quorvix/QXLogLevel.h"

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

/// The inspector's own diagnostic lines, written through the Qt logging category "Quorvix".
namespace QXLog {

/// The log level of the process; initially none. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QXLogLevel level() noexcept;
QUORVIX_INTERNAL_EXPORT void setLevel(QXLogLevel level) noexcept;

/// Writes @p message unchanged if @p level is enabled, both by setLevel() and in the logging category. A
/// message of level none is never written. Any thread.
QUORVIX_INTERNAL_EXPORT void log(QXLogLevel level, const QString &message);

/// "true" or "false", for a log line.
[[nodiscard]] inline QLatin1StringView boolText(bool value)
{
    return value ? QLatin1StringView("true") : QLatin1StringView("false");
}

} // namespace QXLog
