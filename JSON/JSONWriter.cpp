#include "JSON/JSONWriter.h"

#include "JSON/JSONEscape.h"
#include "JSON/JSONReader.h"
#include "JSON/SimdjsonFence.h"
#include "JSON/StableSort.h"

#include "Platform/WriteAll.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace Quorvix {

namespace {

constexpr qsizetype deviceBlockSize = 1 << 20;
constexpr qsizetype firstBufferSize = 4096;
/// The number of text units that are written at once. A small chunk keeps the room for the worst case small.
/// Divisible by three because Base64 encodes three bytes at a time.
constexpr qsizetype chunkSize = 12'288;
/// The number of bytes of a text after which a checkpoint is asked.
constexpr qsizetype checkpointInterval = 8 * chunkSize;
using Member = JSONValue::Members::Member;

/// Writes parsed values. One stack holds the members of all objects that are being written.
class ValueWriter
{
public:
    ValueWriter(JSONWriter &writer, JSONWriter::KeyOrder order, const JSONWriter::Checkpoint &checkpoint)
        : m_writer(writer), m_order(order), m_checkpoint(checkpoint),
          m_next(checkpoint ? 0 : std::numeric_limits<qsizetype>::max())
    {
    }

    // JSONReader::maximumDepth limits the recursion.
    void write(const JSONValue &value) // NOLINT(misc-no-recursion)
    {
        const JSONValue::Kind kind = value.kind();
        m_done += JSONValue::extent(kind);
        if (m_done >= m_next && !ask())
            return;
        switch (kind) {
        case JSONValue::Kind::Object:
            return writeObject(value);
        case JSONValue::Kind::Array:
            return writeArray(value);
        case JSONValue::Kind::String:
            return writeString(value);
        case JSONValue::Kind::Number:
            return writeNumber(value);
        case JSONValue::Kind::Boolean:
            return m_writer.boolean(value.isTrue());
        case JSONValue::Kind::Null:
            return m_writer.null();
        }
    }

private:
    void writeArray(const JSONValue &array) // NOLINT(misc-no-recursion)
    {
        m_writer.beginArray();
        for (const JSONValue element : array.elements()) {
            if (m_isStopped)
                return;
            write(element);
        }
        m_writer.endArray();
    }

    void writeObject(const JSONValue &object) // NOLINT(misc-no-recursion)
    {
        m_writer.beginObject();
        if (m_order == JSONWriter::KeyOrder::Sorted)
            writeSorted(object);
        else
            for (const Member &member : object.members())
                writeMember(member);
        m_writer.endObject();
    }

    void writeSorted(const JSONValue &object) // NOLINT(misc-no-recursion)
    {
        const size_t first = m_members.size();
        for (const Member &member : object.members())
            m_members.push_back(member);
        // UTF-8 bytes sort in the order of their code points.
        stableSort(
            m_members.begin() + std::ptrdiff_t(first), m_members.end(),
            [](const Member &a, const Member &b) { return a.name < b.name; },
            [this] { return !m_checkpoint || ask(); });
        const size_t last = m_members.size();
        for (size_t i = first; i < last; ++i)
            writeMember(Member(m_members[i]));
        m_members.erase(m_members.begin() + std::ptrdiff_t(first), m_members.end());
    }

    void writeMember(const Member &member) // NOLINT(misc-no-recursion)
    {
        if (m_isStopped)
            return;
        ++m_done;
        m_writer.keyUtf8(member.name);
        write(member.value);
    }

    void writeString(const JSONValue &string)
    {
        const QByteArrayView text = string.utf8();
        if (!m_checkpoint)
            return m_writer.utf8(text);
        // So many bytes take about as long as a short value.
        constexpr qsizetype bytesPerPart = 16;
        m_next -= text.size() / bytesPerPart;
        m_writer.utf8(text, [&](qsizetype) { return ask(); });
    }

    bool ask()
    {
        constexpr qsizetype interval = 8192;
        m_next = m_done + interval;
        m_isStopped = m_isStopped || !m_checkpoint(m_done);
        return !m_isStopped;
    }

    void writeNumber(const JSONValue &number)
    {
        if (const QByteArrayView digits = number.wideNumber(); !digits.isEmpty())
            return m_writer.number(digits);
        switch (number.numberKind()) {
        case JSONValue::NumberKind::Int64:
            return m_writer.integer(number.toInt64());
        case JSONValue::NumberKind::UInt64:
            return m_writer.unsignedInteger(number.toUInt64());
        case JSONValue::NumberKind::Double:
            return m_writer.number(number.toDouble());
        }
    }

    JSONWriter &m_writer;
    const JSONWriter::KeyOrder m_order;
    const JSONWriter::Checkpoint &m_checkpoint;
    qsizetype m_done = 0;
    /// What is done when the checkpoint is asked next.
    qsizetype m_next;
    bool m_isStopped = false;
    std::vector<Member> m_members;
};

/// The buffer grows in small steps, so that little reserved memory stays unused. A step is cheap for a block
/// that the allocator maps separately: it moves the pages and copies no bytes. Blocks of up to 32 MB may lie
/// in the heap, where a step copies, so the buffer grows past that size early. Memory that is reserved but
/// never written to takes no physical memory.
qsizetype nextCapacity(qsizetype used, qsizetype size)
{
    constexpr qsizetype largestInHeap = 8 << 20;
    constexpr qsizetype smallestMapped = 40 << 20;
    const qsizetype capacity = std::max(used + size, used + used / 5);
    return capacity > largestInHeap ? std::max(capacity, smallestMapped) : capacity;
}

template<typename Number>
char *printNumber(Number number, char *to, qsizetype room)
{
    return std::to_chars(to, to + room, number).ptr;
}

/// Uses exponents where ECMAScript's Number::toString does, because readers of JSON know that form.
char *printNumber(double number, char *to, qsizetype room)
{
    const double size = std::abs(number);
    // Without a fraction, -0.0 would be read back as the integer 0, which has no sign.
    if (size == 0)
        return std::copy_n(std::signbit(number) ? "-0.0" : "0", std::signbit(number) ? 4 : 1, to);
    const bool isShort = size >= 1e-6 && size < 1e21;
    const auto format = isShort ? std::chars_format::fixed : std::chars_format::scientific;
    return std::to_chars(to, to + room, number, format).ptr;
}

constexpr qsizetype longestNumber = 32;

} // namespace

JSONWriter::JSONWriter(Format format) : m_format(format)
{
    grownRoom(firstBufferSize);
}

JSONWriter::JSONWriter(QIODevice &device, Format format) : m_device(&device), m_format(format)
{
    grownRoom(deviceBlockSize);
}

void JSONWriter::key(QLatin1StringView asciiName)
{
    writeName({asciiName.data(), asciiName.size()});
}

void JSONWriter::keyUtf8(QByteArrayView name)
{
    writeName(name);
}

void JSONWriter::string(QStringView text)
{
    beginValue();
    put('"');
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    while (from != end) {
        const char16_t *to = from + std::min<qsizetype>(end - from, chunkSize);
        if (to != end && QChar::isHighSurrogate(to[-1]))
            ++to;
        m_cursor = JSONEscape::utf16({from, to}, room(JSONEscape::roomForText(to - from)));
        from = to;
    }
    put('"');
}

void JSONWriter::utf8(QByteArrayView text, const Checkpoint &checkpoint)
{
    beginValue();
    writeEscaped(text, checkpoint);
}

void JSONWriter::base64(QByteArrayView bytes, const Checkpoint &checkpoint)
{
    beginValue();
    put('"');
    for (qsizetype i = 0; i < bytes.size(); i += chunkSize) {
        if (checkpoint && i % checkpointInterval == 0 && i > 0 && !checkpoint(i))
            return;
        const QByteArrayView chunk = bytes.sliced(i, std::min(chunkSize, bytes.size() - i));
        m_cursor = JSONEscape::base64(chunk, room(JSONEscape::roomForBase64(chunk.size())));
    }
    put('"');
}

void JSONWriter::integer(qint64 number)
{
    beginValue();
    m_cursor = printNumber(number, room(longestNumber), longestNumber);
}

void JSONWriter::unsignedInteger(quint64 number)
{
    beginValue();
    m_cursor = printNumber(number, room(longestNumber), longestNumber);
}

void JSONWriter::number(double number)
{
    beginValue();
    m_cursor = printNumber(std::isfinite(number) ? number : 0, room(longestNumber), longestNumber);
}

void JSONWriter::number(QByteArrayView digits)
{
    beginValue();
    put(digits);
}

QByteArray JSONWriter::text(double number)
{
    QByteArray text(longestNumber, Qt::Uninitialized);
    text.truncate(printNumber(number, text.data(), longestNumber) - text.constData());
    return text;
}

void JSONWriter::boolean(bool value)
{
    beginValue();
    put(value ? QByteArrayView("true") : QByteArrayView("false"));
}

void JSONWriter::null()
{
    beginValue();
    put("null");
}

void JSONWriter::value(const JSONValue &value, KeyOrder order, const Checkpoint &checkpoint)
{
    ValueWriter(*this, order, checkpoint).write(value);
}

std::optional<NSError> JSONWriter::finish()
{
    if (m_device)
        flush();
    return m_error;
}

QByteArray JSONWriter::takeBuffer()
{
    m_buffer.truncate(m_cursor - m_buffer.constData());
    m_cursor = m_limit = nullptr;
    return std::move(m_buffer);
}

void JSONWriter::begin(char bracket)
{
    beginValue();
    put(bracket);
    ++m_depth;
    m_isEmpty = true;
}

void JSONWriter::end(char bracket)
{
    --m_depth;
    if (!m_isEmpty)
        breakLine();
    m_isEmpty = false;
    put(bracket);
}

/// Writes what comes before a value or a member: nothing after a key, otherwise the comma and the new line.
void JSONWriter::beginValue()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_depth == 0)
        return;
    if (!m_isEmpty)
        put(',');
    m_isEmpty = false;
    breakLine();
}

void JSONWriter::breakLine()
{
    if (m_format == Format::Compact)
        return;
    const qsizetype indentation = m_depth * 2;
    char *to = room(indentation + 1);
    *to++ = '\n';
    m_cursor = std::fill_n(to, indentation, ' ');
}

void JSONWriter::writeName(QByteArrayView name)
{
    beginValue();
    writeEscaped(name);
    put(m_format == Format::Pretty ? QByteArrayView(" : ") : QByteArrayView(":"));
    m_afterKey = true;
}

void JSONWriter::writeEscaped(QByteArrayView text, const Checkpoint &checkpoint)
{
    put('"');
    for (qsizetype i = 0; i < text.size(); i += chunkSize) {
        if (checkpoint && i % checkpointInterval == 0 && i > 0 && !checkpoint(i))
            return;
        const QByteArrayView chunk = text.sliced(i, std::min(chunkSize, text.size() - i));
        m_cursor = JSONEscape::utf8(chunk, room(JSONEscape::roomForText(chunk.size())));
    }
    put('"');
}

char *JSONWriter::grownRoom(qsizetype size)
{
    if (m_device && m_cursor)
        flush();
    const qsizetype used = m_cursor ? m_cursor - m_buffer.constData() : 0;
    if (m_buffer.size() - used < size) {
        const qsizetype capacity = nextCapacity(used, size);
        m_buffer.reserve(capacity);
        m_buffer.resize(capacity);
    }
    m_cursor = m_buffer.data() + used;
    m_limit = m_buffer.data() + m_buffer.size();
    return m_cursor;
}

void JSONWriter::put(QByteArrayView bytes)
{
    m_cursor = std::copy_n(bytes.data(), bytes.size(), room(bytes.size()));
}

void JSONWriter::flush()
{
    const QByteArrayView pending(m_buffer.constData(), m_cursor);
    if (!m_error)
        m_error = writeAll(*m_device, pending);
    m_cursor = m_buffer.data();
}

bool isValidUtf8(QByteArrayView bytes) noexcept
{
    return SimdjsonFence::isUtf8(bytes);
}

} // namespace Quorvix
