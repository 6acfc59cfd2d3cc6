#pragma once

#include "Quorvix/QuorvixGlobal.h"

#include <QtCore/QString>

#include <chrono>

/// Points in time and sizes in the middling length and in the user's language; the time zone is the local
/// one. Any thread.
namespace QXMediumText {

/// Date and time as the locale's long form has them, but with the month cut short and with neither the
/// weekday nor the time zone: "Nov 14, 2023, 10:13:20 PM".
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString date(std::chrono::system_clock::time_point time);

/// A size in kilobytes of 1000 bytes without a fraction, and from a megabyte on in megabytes with one digit
/// of it at most: "12 KB", "1.5 MB". What is not empty has a kilobyte at least.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString byteCount(qsizetype bytes);

} // namespace QXMediumText
