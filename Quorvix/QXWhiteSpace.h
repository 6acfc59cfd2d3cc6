#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

/// White space in UTF-8: the characters with Unicode's White_Space property, line breaks among them.
///
/// Bytes that are not UTF-8 are no white space, and what follows them is read like a text of its own: the
/// same as if each of them were U+FFFD. Stateless; any thread.
class QXWhiteSpace
{
public:
    /// How many bytes the white space character takes that @p text begins with; 0 when it begins with none.
    [[nodiscard]] static qsizetype sizeAtStart(QByteArrayView text) noexcept
    {
        if (text.isEmpty())
            return 0;
        return isAscii(text.front()) ? qsizetype(isAsciiSpace(text.front())) : wideSizeAtStart(text);
    }
    /// Likewise for a line break alone: U+000A to U+000D, U+0085, U+2028 and U+2029.
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
