#include "Quorvix/QXApiMockAnyEncodable.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONWriter.h"
#include "JSON/StableSort.h"

#include <vector>

using namespace Quorvix;

namespace {

struct Member
{
    DynamicCodingKey key;
    JSONValue value;
};

/// Writes JSON values. One stack holds the members of all objects that are currently being written.
class Encoder
{
public:
    Encoder(JSONWriter &writer, QXTaskSteps steps) : m_writer(writer), m_steps(steps) {}

    // JSONReader::maximumDepth limits the recursion.
    void encode(const JSONValue &value) // NOLINT(misc-no-recursion)
    {
        const JSONValue::Kind kind = value.kind();
        m_done += JSONValue::extent(kind);
        m_goesOn = m_steps.goOn(m_done);
        switch (kind) {
        case JSONValue::Kind::Object:
            return encodeObject(value);
        case JSONValue::Kind::Array:
            return encodeArray(value);
        case JSONValue::Kind::String:
            return m_writer.utf8(value.utf8(), [this](qsizetype) { return m_goesOn = m_steps.goOn(); });
        case JSONValue::Kind::Number:
            return m_writer.number(value.toDouble());
        case JSONValue::Kind::Boolean:
            return m_writer.boolean(value.isTrue());
        case JSONValue::Kind::Null:
            return m_writer.null();
        }
    }

private:
    void encodeArray(const JSONValue &array) // NOLINT(misc-no-recursion)
    {
        m_writer.beginArray();
        for (const JSONValue element : array.elements()) {
            encode(element);
            if (!m_goesOn)
                return;
        }
        m_writer.endArray();
    }

    void encodeObject(const JSONValue &object) // NOLINT(misc-no-recursion)
    {
        const size_t first = m_members.size();
        for (const auto &[name, value] : object.members())
            m_members.push_back({DynamicCodingKey(name), value});
        // Comparing UTF-8 bytes gives the order of the code points.
        m_goesOn = stableSort(
            m_members.begin() + std::ptrdiff_t(first), m_members.end(),
            [](const Member &a, const Member &b) { return a.key.stringValue < b.key.stringValue; },
            [this] { return m_steps.goOn(); });
        if (!m_goesOn)
            return;
        const size_t last = m_members.size();
        m_writer.beginObject();
        for (size_t i = first; i < last; ++i) {
            // A copy is needed: encode() can reallocate m_members.
            const Member member = m_members[i];
            if (i + 1 < last && m_members[i + 1].key.stringValue == member.key.stringValue)
                continue;
            ++m_done;
            m_writer.keyUtf8(member.key.stringValue);
            encode(member.value);
            if (!m_goesOn)
                return;
        }
        m_writer.endObject();
        m_members.erase(m_members.begin() + std::ptrdiff_t(first), m_members.end());
    }

    JSONWriter &m_writer;
    QXTaskSteps m_steps;
    qsizetype m_done = 0;
    bool m_goesOn = true;
    std::vector<Member> m_members;
};

} // namespace

void QXApiMockAnyEncodable::encode(JSONWriter &writer, QXTaskProgress *progress) const
{
    Encoder(writer, QXTaskSteps(progress, m_document.size())).encode(m_value);
}
