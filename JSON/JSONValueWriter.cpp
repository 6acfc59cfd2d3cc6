#include "JSON/JSONWriter.h"

#include "JSON/JSONReader.h"
#include "JSON/StableSort.h"

#include <limits>
#include <vector>

namespace Quorvix {

namespace {

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
    /// How much is done between two questions: about a millisecond's work.
    static constexpr qsizetype interval = 8192;

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
        if (text.size() < bytesPerPart * interval)
            return m_writer.utf8(text);
        m_writer.utf8(text, [&](qsizetype) { return ask(); });
    }

    bool ask()
    {
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

} // namespace

void JSONWriter::value(const JSONValue &value, KeyOrder order, const Checkpoint &checkpoint)
{
    ValueWriter(*this, order, checkpoint).write(value);
}

} // namespace Quorvix
