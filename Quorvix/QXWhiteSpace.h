#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

/// White space in UTF-8: the characters with Unicode's White_Space property, including line breaks.
///
/// Bytes that are not UTF-8 are not white space. The text after such a byte is read as if the byte were
/// U+FFFD. Stateless; any thread.
class QXWhiteSpace
{
public:
    /// The number of bytes of the white space character at the start of @p text; 0 if there is none.
    [[nodiscard]] static qsizetype sizeAtStart(QByteArrayView text) noexcept
    {
        if (text.isEmpty())
            return 0;
        return isAscii(text.front()) ? qsizetype(isAsciiSpace(text.front())) : wideSizeAtStart(text);
    }
    /// Like sizeAtStart(), but only for line breaks: U+000A to U+000D, U+0085, U+2028 and U+2029.
    [[nodiscard]] static qsizetype lineBreakSizeAtStart(QByteArrayView text) noexcept;

    [[nodiscard]] static QByteArrayView trimmed(QByteArrayView text) noexcept;
    /// A copy of @p text without any white space.
    [[nodiscard]] static QByteArray removed(QByteArrayView text);

private:
    static bool isAscii(char c) noexcept { return uchar(c) < 0x80; }
    static bool isAsciiSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
    static qsizetype wideSizeAtStart(QByteArrayView text) noexcept;
    static qsizetype sizeAtEnd(QByteArrayView text) noexcept;
};
