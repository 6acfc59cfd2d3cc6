#include "JSON/JSONWriter.h"

#include "JSON/JSONEscape.h"
#include "JSON/SimdjsonFence.h"

#include "Platform/WriteAll.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace Quorvix {

namespace {

constexpr qsizetype deviceBlockSize = 1 << 18;
constexpr qsizetype firstBufferSize = 4096;
/// The number of text units that are written at once. A small chunk keeps the room for the worst case small.
/// Divisible by three because Base64 encodes three bytes at a time.
constexpr qsizetype chunkSize = 12'288;
/// The start of a line. It is copied as a whole, which costs less than to fill as many bytes as needed.
constexpr auto lineStart = [] {
    std::array<char, 64> line{};
    line.fill(' ');
    line.front() = '\n';
    return line;
}();

/// The room that is needed to begin a line at this depth.
constexpr qsizetype lineRoom(qsizetype depth)
{
    return std::max<qsizetype>(depth * 2 + 1, lineStart.size());
}

/// The number of bytes of a text after which a checkpoint is asked.
constexpr qsizetype checkpointInterval = 8 * chunkSize;

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

void JSONWriter::key(QLatin1StringView plainName)
{
    char *to = beginValue(plainName.size() + 2);
    *to++ = '"';
    to = std::copy_n(plainName.data(), plainName.size(), to);
    *to++ = '"';
    m_cursor = to;
    endName();
}

void JSONWriter::keyUtf8(QByteArrayView name)
{
    utf8(name);
    endName();
}

void JSONWriter::string(QStringView text)
{
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    beginText(text.size());
    do {
        const char16_t *to = from + std::min<qsizetype>(end - from, chunkSize);
        if (to != end && QChar::isHighSurrogate(to[-1]))
            ++to;
        m_cursor = JSONEscape::utf16({from, to}, room(JSONEscape::roomForText(to - from) + 1));
        from = to;
    } while (from != end);
    *m_cursor++ = '"';
}

void JSONWriter::utf8(QByteArrayView text, const Checkpoint &checkpoint)
{
    beginText(text.size());
    if (text.size() <= chunkSize) {
        char *const end = JSONEscape::utf8(text, m_cursor);
        *end = '"';
        m_cursor = end + 1;
        return;
    }
    qsizetype done = 0;
    do {
        if (checkpoint && done % checkpointInterval == 0 && done > 0 && !checkpoint(done))
            return;
        const QByteArrayView chunk = text.sliced(done, std::min(chunkSize, text.size() - done));
        m_cursor = JSONEscape::utf8(chunk, room(JSONEscape::roomForText(chunk.size()) + 1));
        done += chunk.size();
    } while (done != text.size());
    *m_cursor++ = '"';
}

void JSONWriter::base64(QByteArrayView bytes, const Checkpoint &checkpoint)
{
    beginText(0);
    for (qsizetype i = 0; i < bytes.size(); i += chunkSize) {
        if (checkpoint && i % checkpointInterval == 0 && i > 0 && !checkpoint(i))
            return;
        const QByteArrayView chunk = bytes.sliced(i, std::min(chunkSize, bytes.size() - i));
        m_cursor = JSONEscape::base64(chunk, room(JSONEscape::roomForBase64(chunk.size())));
    }
    *room(1) = '"';
    ++m_cursor;
}

void JSONWriter::integer(qint64 number)
{
    m_cursor = printNumber(number, beginValue(longestNumber), longestNumber);
}

void JSONWriter::unsignedInteger(quint64 number)
{
    m_cursor = printNumber(number, beginValue(longestNumber), longestNumber);
}

void JSONWriter::number(double number)
{
    m_cursor = printNumber(std::isfinite(number) ? number : 0, beginValue(longestNumber), longestNumber);
}

void JSONWriter::number(QByteArrayView digits)
{
    writePlain(digits);
}

QByteArray JSONWriter::text(double number)
{
    QByteArray text(longestNumber, Qt::Uninitialized);
    text.truncate(printNumber(number, text.data(), longestNumber) - text.constData());
    return text;
}

void JSONWriter::boolean(bool value)
{
    writePlain(value ? QByteArrayView("true") : QByteArrayView("false"));
}

void JSONWriter::null()
{
    writePlain("null");
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
    writePlain({&bracket, 1});
    ++m_depth;
    m_isEmpty = true;
}

void JSONWriter::end(char bracket)
{
    --m_depth;
    char *to = room(lineRoom(m_depth) + 1);
    if (!std::exchange(m_isEmpty, false))
        to = breakLine(to);
    *to++ = bracket;
    m_cursor = to;
}

/// Writes what comes before a value or a member: nothing after a key, otherwise the comma and the new line.
/// Returns where the value is written, which may take @p size bytes.
char *JSONWriter::beginValue(qsizetype size)
{
    char *to = room(lineRoom(m_depth) + 1 + size);
    if (std::exchange(m_afterKey, false) || m_depth == 0)
        return to;
    if (!std::exchange(m_isEmpty, false))
        *to++ = ',';
    return breakLine(to);
}

/// Begins a line behind what is written, which needs lineRoom() bytes, and returns where it goes on.
char *JSONWriter::breakLine(char *to) const
{
    if (m_format == Format::Compact)
        return to;
    const qsizetype size = m_depth * 2 + 1;
    std::copy_n(lineStart.data(), lineStart.size(), to);
    if (size > qsizetype(lineStart.size()))
        std::fill_n(to + lineStart.size(), size - lineStart.size(), ' ');
    return to + size;
}

void JSONWriter::writePlain(QByteArrayView value)
{
    m_cursor = std::copy_n(value.data(), value.size(), beginValue(value.size()));
}

/// Begins a text of so many units, and makes room for it if it is short.
void JSONWriter::beginText(qsizetype units)
{
    m_cursor = beginValue(JSONEscape::roomForText(std::min(units, chunkSize)) + 2);
    *m_cursor++ = '"';
}

void JSONWriter::endName()
{
    const bool isPretty = m_format == Format::Pretty;
    char *to = room(3);
    if (isPretty)
        *to++ = ' ';
    *to++ = ':';
    if (isPretty)
        *to++ = ' ';
    m_cursor = to;
    m_afterKey = true;
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
