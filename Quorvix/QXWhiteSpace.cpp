#include "Quorvix/QXWhiteSpace.h"

#include <algorithm>

namespace {

constexpr qsizetype longestCharacter = 3;

} // namespace

qsizetype QXWhiteSpace::lineBreakSizeAtStart(QByteArrayView text) noexcept
{
    for (const QByteArrayView wide : {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
        if (text.startsWith(wide))
            return wide.size();
    }
    return !text.isEmpty() && text.front() >= '\n' && text.front() <= '\r' ? 1 : 0;
}

QByteArrayView QXWhiteSpace::trimmed(QByteArrayView text) noexcept
{
    while (const qsizetype size = sizeAtStart(text))
        text = text.sliced(size);
    while (const qsizetype size = sizeAtEnd(text))
        text.chop(size);
    return text;
}

QByteArray QXWhiteSpace::removed(QByteArrayView text)
{
    QByteArray result;
    result.reserve(text.size());
    while (!text.isEmpty()) {
        qsizetype end = 0;
        qsizetype size = 0;
        while (end < text.size() && (size = sizeAtStart(text.sliced(end))) == 0)
            ++end;
        result.append(text.first(end));
        text = text.sliced(end + size);
    }
    return result;
}

qsizetype QXWhiteSpace::wideSizeAtStart(QByteArrayView text) noexcept
{
    const auto byte = [&](qsizetype i) {
        return i < text.size() ? uchar(text[i]) : uchar(0);
    };
    const uchar last = byte(2);
    switch (byte(0)) {
    case 0xC2: // U+0085, U+00A0
        return byte(1) == 0x85 || byte(1) == 0xA0 ? 2 : 0;
    case 0xE1: // U+1680
        return byte(1) == 0x9A && last == 0x80 ? 3 : 0;
    case 0xE2: // U+2000 to U+200A, U+2028, U+2029, U+202F; U+205F
        if (byte(1) == 0x80)
            return (last >= 0x80 && last <= 0x8A) || last == 0xA8 || last == 0xA9 || last == 0xAF ? 3 : 0;
        return byte(1) == 0x81 && last == 0x9F ? 3 : 0;
    case 0xE3: // U+3000
        return byte(1) == 0x80 && last == 0x80 ? 3 : 0;
    default:
        return 0;
    }
}

qsizetype QXWhiteSpace::sizeAtEnd(QByteArrayView text) noexcept
{
    if (text.isEmpty())
        return 0;
    if (isAscii(text.back()))
        return isAsciiSpace(text.back()) ? 1 : 0;
    // The first byte of a character is never a continuation byte of another one, so only one size can match.
    for (qsizetype size = 2; size <= std::min(longestCharacter, text.size()); ++size) {
        if (wideSizeAtStart(text.last(size)) == size)
            return size;
    }
    return 0;
}
