#pragma once

#include "JSON/JSONReader.h"

#include <QtCore/QByteArrayView>

#include <optional>
#include <utility>

namespace Quorvix {
class JSONWriter;
} // namespace Quorvix

/// The key of a member whose name is known only when it is met.
struct DynamicCodingKey
{
    /// The key of this name, which is no index.
    explicit DynamicCodingKey(QByteArrayView utf8) noexcept : stringValue(utf8) {}

    /// Valid UTF-8; refers to the text that the key was made from.
    QByteArrayView stringValue;
    std::optional<qint64> intValue;
};

/// Any parsed JSON value, as a part of a record that is encoded. A small value; copies share the document.
class QXApiMockAnyEncodable
{
public:
    /// The whole of a document.
    explicit QXApiMockAnyEncodable(const Quorvix::JSONDocument &document)
        : m_document(document), m_value(document.root())
    {
    }
    /// A value that @p document holds.
    QXApiMockAnyEncodable(Quorvix::JSONDocument document, const Quorvix::JSONValue &value) noexcept
        : m_document(std::move(document)), m_value(value)
    {
    }

    /// Writes the value with its keys in ascending order. Of members with the same name only the last one
    /// counts, as in a map.
    ///
    /// Numbers go out as the doubles next to them: integers beyond 2^53 lose digits, as they do in every
    /// reader that knows JSON numbers as doubles (RFC 8259, 6). Any thread.
    void encode(Quorvix::JSONWriter &writer) const;

private:
    Quorvix::JSONDocument m_document;
    Quorvix::JSONValue m_value;
};
