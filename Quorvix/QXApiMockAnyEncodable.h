#pragma once

#include "JSON/JSONReader.h"

#include <QtCore/QByteArrayView>

#include <optional>
#include <utility>

class QXTaskProgress;

namespace Quorvix {
class JSONWriter;
} // namespace Quorvix

/// An object key that is known only at run time.
struct DynamicCodingKey
{
    /// Makes a key from a name; intValue stays empty.
    explicit DynamicCodingKey(QByteArrayView utf8) noexcept : stringValue(utf8) {}

    /// Valid UTF-8. A view: the text that the key was made from must outlive the key.
    QByteArrayView stringValue;
    std::optional<qint64> intValue;
};

/// Any parsed JSON value, used as a part of a record that is encoded. A small value; copies share the
/// document.
class QXApiMockAnyEncodable
{
public:
    /// Takes the root value of @p document.
    explicit QXApiMockAnyEncodable(const Quorvix::JSONDocument &document)
        : m_document(document), m_value(document.root())
    {
    }
    /// Takes @p value, which must be part of @p document.
    QXApiMockAnyEncodable(Quorvix::JSONDocument document, const Quorvix::JSONValue &value) noexcept
        : m_document(std::move(document)), m_value(value)
    {
    }

    /// Writes the value with its keys in ascending order. If several members have the same name, only the
    /// last one is written, as in a map.
    ///
    /// Numbers are written as the nearest double. Integers beyond 2^53 lose digits, as in every reader that
    /// uses doubles for JSON numbers (RFC 8259, 6). Stops in the middle if the task is cancelled. The current
    /// stage of @p progress covers the document. Any thread.
    void encode(Quorvix::JSONWriter &writer, QXTaskProgress *progress = nullptr) const;

private:
    Quorvix::JSONDocument m_document;
    Quorvix::JSONValue m_value;
};
