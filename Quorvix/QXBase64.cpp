#include "Quorvix/QXBase64.h"

#include "Quorvix/QXWhiteSpace.h"

#include "JSON/JSONReader.h"

#include "Platform/LargeText.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr int groupSize = 4;
constexpr int bytesPerGroup = 3;

constexpr std::string_view alphabet("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

/// The value of each character, shifted to its position in a group; negative for a character that is not
/// Base64.
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

/// Decodes four characters. Negative if one of them is not Base64.
qint32 groupAt(const char *at) noexcept
{
    return values<18>[uchar(at[0])] | values<12>[uchar(at[1])] | values<6>[uchar(at[2])] | valueOf(at[3]);
}

/// Writes decoded bytes. put() always writes four bytes, so the buffer needs one byte more than the result.
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

/// Discards the bytes when a text is only checked.
struct NoSink
{
    void put(qint32, int = bytesPerGroup) noexcept {}
};

template<typename Sink>
class Decoder
{
public:
    Decoder(QByteArrayView text, QXBase64::WhiteSpace whiteSpace, Sink &sink, QXTaskSteps steps) noexcept
        : m_begin(text.begin()), m_at(text.begin()), m_end(text.end()),
          m_skipsWhiteSpace(whiteSpace == QXBase64::WhiteSpace::Skipped), m_sink(sink), m_steps(steps)
    {
    }

    bool decode() noexcept
    {
        do {
            if (!m_steps.goOn(m_at - m_begin))
                return false;
            decodeGroupPairs();
        } while (decodeGroup());
        return decodeEnd();
    }

private:
    /// Decodes pairs of groups, for speed, up to some number. decodeGroup() handles a single group that
    /// remains.
    void decodeGroupPairs() noexcept
    {
        constexpr std::ptrdiff_t mostAtOnce = 1 << 18;
        const char *const end = m_at + std::min(m_end - m_at, mostAtOnce);
        for (; end - m_at >= groupSize + groupSize; m_at += groupSize + groupSize) {
            const qint32 first = groupAt(m_at);
            const qint32 second = groupAt(m_at + groupSize);
            if ((first | second) < 0)
                return;
            m_sink.put(first);
            m_sink.put(second);
        }
    }

    /// Decodes one group character by character; false if the group is not complete.
    bool decodeGroup() noexcept
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

    /// Decodes the characters and the padding after the last complete group.
    bool decodeEnd() noexcept
    {
        if (m_count == 1)
            return false;
        int allowedPadding = m_count == 0 ? 0 : groupSize - m_count;
        for (skipWhiteSpace(); m_at != m_end; skipWhiteSpace()) {
            if (*m_at != '=' || --allowedPadding < 0)
                return false;
            ++m_at;
        }
        if (m_count > 0)
            m_sink.put(m_group << 6 * (groupSize - m_count), m_count - 1);
        return true;
    }

    void skipWhiteSpace() noexcept
    {
        while (m_skipsWhiteSpace) {
            const qsizetype size = QXWhiteSpace::sizeAtStart({m_at, m_end});
            if (size == 0)
                return;
            m_at += size;
        }
    }

    const char *const m_begin;
    const char *m_at;
    const char *const m_end;
    const bool m_skipsWhiteSpace;
    Sink &m_sink;
    QXTaskSteps m_steps;
    /// The incomplete group and the number of its characters.
    qint32 m_group = 0;
    int m_count = 0;
};

} // namespace

bool QXBase64::decode(QByteArrayView text, WhiteSpace whiteSpace, QByteArray *bytes, QXTaskSteps steps)
{
    if (!bytes) {
        NoSink sink;
        return Decoder(text, whiteSpace, sink, steps).decode();
    }
    const qsizetype room = (text.size() / groupSize + 1) * bytesPerGroup + 1;
    // The result may be JSON, which is parsed in place.
    if (room > bytes->capacity())
        Quorvix::LargeText::reserve(*bytes, room + Quorvix::JSONReader::padding);
    bytes->resize(room);
    ByteSink sink(bytes->data());
    if (!Decoder(text, whiteSpace, sink, steps).decode())
        return false;
    bytes->truncate(sink.end() - bytes->constData());
    return true;
}
