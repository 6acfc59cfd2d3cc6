#include "JSON/JSONEscape.h"

#include "Platform/HexDigit.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Quorvix {

namespace {

bool needsEscape(unsigned char c)
{
    return c < 0x20 || c == '"' || c == '\\';
}

char *escape(unsigned char c, char *to)
{
    const auto pair = [&](char letter) {
        *to++ = '\\';
        *to++ = letter;
        return to;
    };
    switch (c) {
    case '"':
    case '\\':
        return pair(char(c));
    case '\b':
        return pair('b');
    case '\f':
        return pair('f');
    case '\n':
        return pair('n');
    case '\r':
        return pair('r');
    case '\t':
        return pair('t');
    default:
        break;
    }
    const char sequence[JSONEscape::longestEscape] = {
        '\\', 'u', '0', '0', hexDigit(c >> 4), hexDigit(c & 15)};
    return std::copy_n(sequence, JSONEscape::longestEscape, to);
}

#ifdef __SSE2__

constexpr qsizetype blockSize = JSONEscape::largestBlock;

/// Copies a whole block and returns how many bytes come before the first one that needs an escape.
qsizetype copyPlain(const char *from, char *to)
{
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), block);
    const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(block, _mm_set1_epi8(0x1F)), block);
    const __m128i quote = _mm_cmpeq_epi8(block, _mm_set1_epi8('"'));
    const __m128i backslash = _mm_cmpeq_epi8(block, _mm_set1_epi8('\\'));
    const int found = _mm_movemask_epi8(_mm_or_si128(control, _mm_or_si128(quote, backslash)));
    return std::countr_zero(unsigned(found) | 1U << blockSize);
}

#else

constexpr qsizetype blockSize = 8;

/// Copies a whole block and returns how many bytes come before the first one that needs an escape.
qsizetype copyPlain(const char *from, char *to)
{
    constexpr quint64 ones = 0x0101010101010101;
    constexpr quint64 tops = 0x8080808080808080;
    std::copy_n(from, blockSize, to);
    const auto block = qFromLittleEndian<quint64>(from);
    // Sets the top bit of each byte that is below the limit. The result is exact only up to the first such
    // byte, and the caller needs no more.
    const auto below = [](quint64 bytes, quint64 limit) {
        return (bytes - ones * limit) & ~bytes & tops;
    };
    const quint64 found =
        below(block, 0x20) | below(block ^ (ones * '"'), 1) | below(block ^ (ones * '\\'), 1);
    return std::countr_zero(found) / 8;
}

#endif

char *encodeUtf8(char32_t c, char *to)
{
    const auto continuation = [c](int shift) {
        return char(0x80 | (c >> shift & 0x3F));
    };
    if (c < 0x800) {
        *to++ = char(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            *to++ = char(0xE0 | c >> 12);
        } else {
            *to++ = char(0xF0 | c >> 18);
            *to++ = continuation(12);
        }
        *to++ = continuation(6);
    }
    *to++ = continuation(0);
    return to;
}

/// Removes the next character from the front and returns it; half of a surrogate pair gives U+FFFD.
char32_t takeCharacter(const char16_t *&from, const char16_t *end)
{
    const char16_t unit = *from++;
    if (!QChar::isSurrogate(unit))
        return unit;
    if (QChar::isHighSurrogate(unit) && from != end && QChar::isLowSurrogate(*from))
        return QChar::surrogateToUcs4(unit, *from++);
    return QChar::ReplacementCharacter;
}

constexpr char base64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The two Base64 letters for each value of twelve bits.
constexpr auto base64Pairs = [] {
    std::array<std::array<char, 2>, 4096> pairs{};
    for (size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {base64Alphabet[i >> 6], base64Alphabet[i & 63]};
    return pairs;
}();

} // namespace

char *JSONEscape::utf8(QByteArrayView text, char *to)
{
    const char *from = text.cbegin();
    const char *const end = text.cend();
    while (end - from >= blockSize) {
        const qsizetype plain = copyPlain(from, to);
        from += plain;
        to += plain;
        if (plain < blockSize)
            to = escape(static_cast<unsigned char>(*from++), to);
    }
    for (; from != end; ++from) {
        if (needsEscape(static_cast<unsigned char>(*from)))
            to = escape(static_cast<unsigned char>(*from), to);
        else
            *to++ = *from;
    }
    return to;
}

char *JSONEscape::utf16(QStringView text, char *to)
{
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    while (from != end) {
        const char32_t c = takeCharacter(from, end);
        if (c >= 0x80)
            to = encodeUtf8(c, to);
        else if (needsEscape(static_cast<unsigned char>(c)))
            to = escape(static_cast<unsigned char>(c), to);
        else
            *to++ = char(c);
    }
    return to;
}

char *JSONEscape::base64(QByteArrayView bytes, char *to)
{
    const char *from = bytes.cbegin();
    const char *const end = bytes.cend();
    const auto byte = [&](qsizetype i) {
        return unsigned(static_cast<unsigned char>(from[i]));
    };
    for (; end - from >= 3; from += 3) {
        const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
        to = std::copy_n(base64Pairs[bits >> 12].data(), 2, to);
        to = std::copy_n(base64Pairs[bits & 0xFFF].data(), 2, to);
    }
    if (end == from)
        return to;
    const bool isPair = end - from == 2;
    const unsigned bits = byte(0) << 16 | (isPair ? byte(1) << 8 : 0);
    to = std::copy_n(base64Pairs[bits >> 12].data(), 2, to);
    *to++ = isPair ? base64Alphabet[bits >> 6 & 63] : '=';
    *to++ = '=';
    return to;
}

} // namespace Quorvix
