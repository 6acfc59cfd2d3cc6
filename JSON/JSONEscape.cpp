#include "JSON/JSONEscape.h"

#include "Platform/HexDigit.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace Quorvix {

namespace {

constexpr bool needsEscape(unsigned char c)
{
    return c < 0x20 || c == '"' || c == '\\';
}

/// What a byte of text becomes. All eight bytes are copied at once, and only the first ones count.
struct Written
{
    std::array<char, 7> bytes{};
    quint8 size = 0;
};

constexpr Written written(unsigned char c)
{
    if (!needsEscape(c))
        return {{char(c)}, 1};
    switch (c) {
    case '"':
    case '\\':
        return {{'\\', char(c)}, 2};
    case '\b':
        return {{'\\', 'b'}, 2};
    case '\f':
        return {{'\\', 'f'}, 2};
    case '\n':
        return {{'\\', 'n'}, 2};
    case '\r':
        return {{'\\', 'r'}, 2};
    case '\t':
        return {{'\\', 't'}, 2};
    default:
        return {{'\\', 'u', '0', '0', hexDigit(c >> 4), hexDigit(c & 15)}, JSONEscape::longestEscape};
    }
}

constexpr auto writtenBytes = [] {
    std::array<Written, 256> table{};
    for (size_t c = 0; c < table.size(); ++c)
        table[c] = written(static_cast<unsigned char>(c));
    return table;
}();

constexpr int wordSize = 8;

char *writeByte(char c, char *to)
{
    const Written &entry = writtenBytes[static_cast<unsigned char>(c)];
    std::memcpy(to, &entry, sizeof entry);
    return to + entry.size;
}

constexpr quint64 ones = 0x0101010101010101;

/// Gathers the lowest bits of eight bytes, which have no other bits, the first byte's as the lowest.
constexpr quint64 gatherBits(quint64 bytes)
{
    return bytes * 0x0102040810204080 >> 56;
}

/// A bit for each byte of a block that needs an escape, the lowest for the first byte.
template<int blockSize>
quint64 findEscapes(const char *from)
{
    // The compiler makes vectors of this loop, also at -O2, because the number of rounds is known and nothing
    // branches.
    std::array<quint8, blockSize> found{};
    for (int i = 0; i < blockSize; ++i) {
        const auto c = static_cast<unsigned char>(from[i]);
        found[size_t(i)] = quint8(c < 0x20) | quint8(c == '"') | quint8(c == '\\');
    }
    quint64 bits = 0;
    for (int i = 0; i < blockSize; i += wordSize)
        bits |= gatherBits(qFromLittleEndian<quint64>(found.data() + i)) << i;
    return bits;
}

/// The same for one word. No carry goes from byte to byte.
template<>
quint64 findEscapes<wordSize>(const char *from)
{
    constexpr quint64 lowBits = ones * 0x7F;
    const auto word = qFromLittleEndian<quint64>(from);
    // The top bit of each byte that is not below the limit.
    const auto notBelow = [](quint64 bytes, unsigned limit) {
        return ((bytes & lowBits) + ones * (0x80 - limit)) | bytes;
    };
    const quint64 plain =
        notBelow(word, 0x20) & notBelow(word ^ (ones * '"'), 1) & notBelow(word ^ (ones * '\\'), 1);
    return gatherBits(~plain >> 7 & ones);
}

/// Copies at least @p size bytes and at most a block.
template<int blockSize>
char *copyPlain(const char *from, int size, char *to)
{
    constexpr int step = std::min(blockSize, 16);
    for (int i = 0; i < blockSize; i += step) {
        std::memcpy(to + i, from + i, step);
        if (size <= i + step)
            break;
    }
    return to + size;
}

/// Writes whole blocks. Up to a block behind the end of each is read and written, without effect, so one
/// block or more remain.
template<int blockSize>
char *writeBlocks(const char *&from, const char *end, char *to)
{
    for (; end - from >= qsizetype(2) * blockSize; from += blockSize) {
        int done = 0;
        for (quint64 escapes = findEscapes<blockSize>(from); escapes != 0; escapes &= escapes - 1) {
            const int at = std::countr_zero(escapes);
            to = copyPlain<blockSize>(from + done, at - done, to);
            to = writeByte(from[at], to);
            done = at + 1;
        }
        std::memcpy(to, from + done, blockSize);
        to += blockSize - done;
    }
    return to;
}

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

/// The number of units of UTF-16 in a word.
constexpr int unitsAtOnce = 4;

/// Writes a word of UTF-16 if each of its units is written as one byte.
bool writePlain(const char16_t *from, char *to)
{
    constexpr quint64 oneInEach = 0x0001000100010001;
    constexpr quint64 tops = oneInEach * 0x80;
    const auto word = qFromLittleEndian<quint64>(from);
    if ((word & oneInEach * 0xFF80) != 0)
        return false;
    // The top bit of each unit that is not below the limit.
    const auto notBelow = [](quint64 units, unsigned limit) {
        return units + oneInEach * (0x80 - limit);
    };
    const quint64 plain =
        notBelow(word, 0x20) & notBelow(word ^ (oneInEach * '"'), 1) & notBelow(word ^ (oneInEach * '\\'), 1);
    if ((plain & tops) != tops)
        return false;
    const quint64 pairs = (word | word >> 8) & 0x0000FFFF0000FFFF;
    qToLittleEndian(quint32(pairs | pairs >> 16), to);
    return true;
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
    to = writeBlocks<largestBlock>(from, end, to);
    to = writeBlocks<wordSize>(from, end, to);
    for (; from != end; ++from)
        to = writeByte(*from, to);
    return to;
}

char *JSONEscape::utf16(QStringView text, char *to)
{
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    while (from != end) {
        const char16_t *const next = from + std::min<qsizetype>(end - from, unitsAtOnce);
        if (next - from == unitsAtOnce && writePlain(from, to)) {
            from = next;
            to += unitsAtOnce;
        }
        while (from < next) {
            const char32_t c = takeCharacter(from, end);
            to = c < 0x80 ? writeByte(char(c), to) : encodeUtf8(c, to);
        }
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
