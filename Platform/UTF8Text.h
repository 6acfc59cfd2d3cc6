#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <optional>

namespace Quorvix {

/// Decodes UTF-8 (RFC 3629), and finds a byte order mark at its beginning. Any thread.
///
/// QString::fromUtf8() drops the mark and replaces bytes that are not UTF-8 without an error, so it is only
/// for bytes that are known to have neither. isValidUtf8() is cheaper for a check without a text.
namespace UTF8Text {

inline constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

[[nodiscard]] inline QByteArrayView withoutByteOrderMark(QByteArrayView utf8) noexcept
{
    return utf8.startsWith(byteOrderMark) ? utf8.sliced(byteOrderMark.size()) : utf8;
}

/// The text, a byte order mark included. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString replacing(QByteArrayView utf8);

/// The text, a byte order mark included; absent when any of the bytes is not UTF-8.
[[nodiscard]] std::optional<QString> exact(QByteArrayView utf8);

} // namespace UTF8Text

} // namespace Quorvix
