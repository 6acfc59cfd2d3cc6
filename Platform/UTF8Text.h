#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <optional>

namespace Quorvix {

/// Text out of UTF-8 (RFC 3629), and what becomes of a byte order mark at its beginning. Any thread.
///
/// QString::fromUtf8() drops the mark and replaces what is not UTF-8 without a word; it is for bytes that are
/// known to have neither. Bytes that are only to be checked are cheaper to check with isValidUtf8().
namespace UTF8Text {

inline constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

[[nodiscard]] inline QByteArrayView withoutByteOrderMark(QByteArrayView utf8) noexcept
{
    return utf8.startsWith(byteOrderMark) ? utf8.sliced(byteOrderMark.size()) : utf8;
}

/// The text, a byte order mark included. What is not UTF-8 becomes U+FFFD.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString replacing(QByteArrayView utf8);

/// The text, a byte order mark included; nothing when the bytes are not UTF-8 to their end.
[[nodiscard]] std::optional<QString> exact(QByteArrayView utf8);

} // namespace UTF8Text

} // namespace Quorvix
