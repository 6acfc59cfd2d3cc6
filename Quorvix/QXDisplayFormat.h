#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

#include <chrono>

/// Points in time, durations and sizes as the screens and exported texts show them: in the user's language,
/// of medium length, in the local time zone. Any thread.
namespace QXDisplayFormat {

/// Date and time as the locale's long form has them, but with the month cut short and with neither the
/// weekday nor the time zone: "Nov 14, 2023, 10:13:20 PM".
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString date(std::chrono::system_clock::time_point time);

/// A size in kilobytes of 1000 bytes without a fraction, and from a megabyte on in megabytes with one digit
/// of it at most: "12 KB", "1.5 MB". What is not empty has a kilobyte at least.
[[nodiscard]] QString byteCount(qsizetype bytes);

/// A number of seconds in a text that has @p directive, as "%.3f", where the number goes; it gets so many
/// digits behind the point.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString seconds(const QString &text, QLatin1StringView directive,
                                                      double seconds, int digits);

} // namespace QXDisplayFormat
