#pragma once

#include <QtCore/QByteArrayView>

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Quorvix {

/// A parsed text in the form in which simdjson documents and keeps it: a tape with one word for each value
/// and each name in the order of the text, and a second word for a number and for the end of a container. The
/// type of a word is a character in its highest byte. Reads without a function call, because a tree reads
/// millions of words.
///
/// Immutable once it is parsed; several threads may read it. It does not own the memory.
class JSONTape
{
public:
    enum Type : char {
        Object = '{',
        Array = '[',
        String = '"',
        Int64 = 'l',
        UInt64 = 'u',
        Double = 'd',
        True = 't',
        False = 'f',
        Null = 'n'
    };

    /// Where the value at the top level is.
    static constexpr size_t root = 1;
    /// The number of members or elements is kept in 24 bits. This value means "this many or more".
    static constexpr size_t saturatedCount = 0xFFFFFF;

    [[nodiscard]] Type type(size_t index) const noexcept { return Type(m_words[index] >> typeShift); }
    [[nodiscard]] static constexpr bool isNumber(Type type) noexcept
    {
        return type == Int64 || type == UInt64 || type == Double;
    }

    /// How many words the tape has.
    [[nodiscard]] size_t size() const noexcept { return payload(0); }
    /// The number of values on a tape of this size is no smaller: a member takes three words at most.
    [[nodiscard]] static constexpr size_t fewestValues(size_t size) noexcept { return size / 3; }
    /// The place behind a value and all that it holds.
    [[nodiscard]] size_t after(size_t index) const noexcept
    {
        switch (type(index)) {
        case Object:
        case Array:
            return quint32(m_words[index]);
        case Int64:
        case UInt64:
        case Double:
            return index + 2;
        default:
            return index + 1;
        }
    }
    /// The place behind the last member or element of a container. The first one is behind the container's
    /// word.
    [[nodiscard]] size_t lastOf(size_t container) const noexcept { return quint32(m_words[container]) - 1; }
    /// The number of members or elements as it is kept.
    [[nodiscard]] size_t keptCount(size_t container) const noexcept
    {
        return size_t(m_words[container] >> 32) & saturatedCount;
    }

    /// A stored text, whose size is kept before it.
    [[nodiscard]] const char *stored(size_t string) const noexcept
    {
        return m_texts + payload(string) + sizeof(quint32);
    }
    [[nodiscard]] static QByteArrayView view(const char *stored) noexcept
    {
        quint32 size = 0;
        std::memcpy(&size, stored - sizeof size, sizeof size);
        return {stored, qsizetype(size)};
    }
    /// So many bytes from the beginning of a stored text on can be read, even if it is shorter.
    static constexpr size_t readable = 8;

    [[nodiscard]] quint64 bits(size_t number) const noexcept { return m_words[number + 1]; }
    /// The text of a number that no machine number holds; empty for other numbers.
    [[nodiscard]] QByteArrayView wideNumber(size_t number) const noexcept
    {
        const quint64 mark = bits(number) ^ notANumber;
        if (type(number) != Double || mark > mostWideNumbers)
            return {};
        const size_t begin = mark == 0 ? 0 : m_wideEnds[mark - 1];
        return {m_wideDigits + begin, qsizetype(m_wideEnds[mark] - begin)};
    }

protected:
    /// A word has its type above this bit, and a size or a place below.
    static constexpr int typeShift = 56;
    /// The tape holds the index of a wide number in a NaN, which no JSON text has.
    static constexpr quint64 notANumber = std::bit_cast<quint64>(std::numeric_limits<double>::quiet_NaN());
    static constexpr quint64 mostWideNumbers = quint64(1) << 50;

    JSONTape() noexcept = default;

    [[nodiscard]] quint64 payload(size_t index) const noexcept
    {
        return m_words[index] & ((quint64(1) << typeShift) - 1);
    }

    const std::uint64_t *m_words = nullptr;
    const char *m_texts = nullptr;
    const char *m_wideDigits = nullptr;
    const size_t *m_wideEnds = nullptr;
};

} // namespace Quorvix
