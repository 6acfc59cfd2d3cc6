#include "Quorvix/QXBase64.h"

#include "Quorvix/QXWhiteSpace.h"

#include <QtCore/QtEndian>

#include <array>
#include <string_view>

namespace {

constexpr int groupSize = 4;
constexpr int bytesPerGroup = 3;

constexpr std::string_view alphabet("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

/// The value of each character, moved to its place in a group; negative for one that has none.
template<int shift>
constexpr std::array<qint32, 256> values = [] {
    std::array<qint32, 256> table{};
    table.fill(-1);
    for (size_t value = 0; value < alphabet.size(); ++value)
        table[uchar(alphabet[value])] = qint32(value) << shift;
    table['-'] = table['+'];
    table['_'] = table['/'];
    return table;
}();

qint32 valueOf(char c) noexcept
{
    return values<0>[uchar(c)];
}

/// Negative when one of the four characters has no value.
qint32 groupAt(const char *at) noexcept
{
    return values<18>[uchar(at[0])] | values<12>[uchar(at[1])] | values<6>[uchar(at[2])] | valueOf(at[3]);
}

/// Where decoded bytes go. One byte more than belongs to a group is written with it.
class ByteSink
{
public:
    explicit ByteSink(char *to) noexcept : m_to(to) {}
    void put(qint32 group, int count = bytesPerGroup) noexcept
    {
        qToBigEndian(quint32(group) << 8, m_to);
        m_to += count;
    }
    [[nodiscard]] const char *end() const noexcept { return m_to; }

private:
    char *m_to;
};

/// For a text that is only looked at.
struct NoSink
{
    void put(qint32, int = bytesPerGroup) noexcept {}
};

template<typename Sink>
class Decoder
{
public:
    Decoder(QByteArrayView text, QXBase64::WhiteSpace whiteSpace, Sink &sink) noexcept
        : m_at(text.begin()), m_end(text.end()), m_skips(whiteSpace == QXBase64::WhiteSpace::Skipped),
          m_sink(sink)
    {
    }

    bool decode() noexcept
    {
        do {
            takeWholeGroups();
        } while (takeGroup());
        return takeEnd();
    }

private:
    /// Pairs of groups, for speed; a single one that remains is left to takeGroup().
    void takeWholeGroups() noexcept
    {
        for (; m_end - m_at >= groupSize + groupSize; m_at += groupSize + groupSize) {
            const qint32 first = groupAt(m_at);
            const qint32 second = groupAt(m_at + groupSize);
            if ((first | second) < 0)
                return;
            m_sink.put(first);
            m_sink.put(second);
        }
    }

    /// Takes one group character by character; false when it is not complete.
    bool takeGroup() noexcept
    {
        m_group = 0;
        for (m_count = 0; m_count < groupSize; ++m_count) {
            skipWhiteSpace();
            const qint32 value = m_at == m_end ? -1 : valueOf(*m_at);
            if (value < 0)
                return false;
            m_group = m_group << 6 | value;
            ++m_at;
        }
        m_sink.put(m_group);
        return true;
    }

    /// Takes what remains after the last complete group.
    bool takeEnd() noexcept
    {
        if (m_count == 1)
            return false;
        int room = m_count == 0 ? 0 : groupSize - m_count;
        for (skipWhiteSpace(); m_at != m_end; skipWhiteSpace()) {
            if (*m_at != '=' || --room < 0)
                return false;
            ++m_at;
        }
        if (m_count > 0)
            m_sink.put(m_group << 6 * (groupSize - m_count), m_count - 1);
        return true;
    }

    void skipWhiteSpace() noexcept
    {
        while (m_skips) {
            const qsizetype size = QXWhiteSpace::sizeAtStart({m_at, m_end});
            if (size == 0)
                return;
            m_at += size;
        }
    }

    const char *m_at;
    const char *const m_end;
    const bool m_skips;
    Sink &m_sink;
    /// The group that is not complete, and how many characters of it there are.
    qint32 m_group = 0;
    int m_count = 0;
};

} // namespace

bool QXBase64::decode(QByteArrayView text, WhiteSpace whiteSpace, QByteArray *bytes)
{
    if (!bytes) {
        NoSink sink;
        return Decoder(text, whiteSpace, sink).decode();
    }
    bytes->resize((text.size() / groupSize + 1) * bytesPerGroup + 1);
    ByteSink sink(bytes->data());
    if (!Decoder(text, whiteSpace, sink).decode())
        return false;
    bytes->truncate(sink.end() - bytes->constData());
    return true;
}
