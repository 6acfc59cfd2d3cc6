#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QStringView>

namespace Quorvix {

/// The inner loops of JSONWriter. Each function writes at `to` and returns the end of what it wrote. The
/// caller makes sure that there is enough room.
namespace JSONEscape {

/// The number of bytes that one unit of text can become, as in \u001f.
inline constexpr qsizetype longestEscape = 6;
/// Text is copied in whole blocks, so the caller reserves this many bytes more than the text needs.
inline constexpr qsizetype largestBlock = 64;

constexpr qsizetype roomForText(qsizetype units)
{
    return units * longestEscape + largestBlock;
}

constexpr qsizetype roomForBase64(qsizetype bytes)
{
    return (bytes + 2) / 3 * 4;
}

/// Writes well-formed UTF-8 with escapes. Text without escapes is copied many bytes at a time.
char *utf8(QByteArrayView text, char *to);
/// Writes UTF-16 as UTF-8 with escapes; a lone surrogate becomes U+FFFD.
char *utf16(QStringView text, char *to);
/// Writes bytes as Base64 (RFC 4648, section 4) with padding.
char *base64(QByteArrayView bytes, char *to);

} // namespace JSONEscape

} // namespace Quorvix
