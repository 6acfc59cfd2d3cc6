#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

#include <chrono>

/// Formats points in time and durations for the screens and the exported texts: in the user's
/// language, at medium length, in the local time zone. Any thread.
namespace QXDisplayFormat {

/// Date and time in the locale's long format, with a short month and without weekday and time zone: "Nov 14,
/// 2023, 10:13:20 PM".
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString date(std::chrono::system_clock::time_point time);

/// The sentence that stands in place of a body of this size that the budget of the recorder has removed:
/// "Removed to stay within the memory budget (1.2 MB)".
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString discardedBody(qsizetype bytes);

/// Replaces @p directive in @p text, for example "%.3f", with the number of seconds. @p digits is the number
/// of digits after the decimal point.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString seconds(const QString &text, QLatin1StringView directive,
                                                      double seconds, int digits);

} // namespace QXDisplayFormat
