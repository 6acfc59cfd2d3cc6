#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/// The headers whose values stay secret when an exchange leaves the program: exports write a marker in place
/// of the value. Off by default.
///
/// @code
/// QXRedaction::setHeaders(QXRedaction::credentials() + QStringList(u"X-Api-Key"_s));
/// @endcode
///
/// This concerns HTTP archives, `curl` commands, texts, mock server files and all other exports, but not the
/// screens, nor what the user copies there. In an archive the cookies of redacted headers keep their names.
/// URLs and bodies are written as they are. An export that has begun may finish with the former list.
namespace QXRedaction {

/// What an export writes in place of a value.
inline constexpr QStringView marker{u"[redacted]"};

/// The headers that carry credentials: Authorization, Cookie, Set-Cookie, Proxy-Authorization. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT QStringList credentials();

/// Replaces the list of header names, whose case makes no difference. An empty list switches redaction off.
/// Any thread.
QUORVIX_CORE_EXPORT void setHeaders(const QStringList &names);

/// The list of header names, as it was set. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT QStringList headers();

/// Whether exports replace the values of this header. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT bool concerns(QStringView header);

} // namespace QXRedaction
