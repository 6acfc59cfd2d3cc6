#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QStringView>

namespace Quorvix {

/// The inner loops of JSONWriter. Each writes from `to` on, where there must be room, and returns the new
/// end.
namespace JSONEscape {

/// What one unit can grow to: \u001f.
inline constexpr qsizetype longestEscape = 6;
/// Text is stored in whole blocks, even where only the beginning of one counts.
inline constexpr qsizetype largestBlock = 16;

constexpr qsizetype roomForText(qsizetype units)
{
    return units * longestEscape + largestBlock;
}

constexpr qsizetype roomForBase64(qsizetype bytes)
{
    return (bytes + 2) / 3 * 4;
}

/// Well-formed UTF-8, escaped. Plain stretches are copied many bytes at a time.
char *utf8(QByteArrayView text, char *to);
/// UTF-16 as escaped UTF-8; a lone surrogate becomes U+FFFD.
char *utf16(QStringView text, char *to);
/// Base64 (RFC 4648, section 4) with padding.
char *base64(QByteArrayView bytes, char *to);

} // namespace JSONEscape

} // namespace Quorvix
