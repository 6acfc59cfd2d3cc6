#pragma once

#include "JSON/JSONValue.h"

#include "Platform/Result.h"

#include <memory>

namespace Quorvix {

/// A parsed JSON text. Copies share it; it owns what its values point into, not the text it was made from.
class QUORVIX_INTERNAL_EXPORT JSONDocument
{
public:
    [[nodiscard]] JSONValue root() const noexcept;

private:
    friend class JSONReader;

    explicit JSONDocument(std::shared_ptr<const void> storage) noexcept : m_storage(std::move(storage)) {}

    std::shared_ptr<const void> m_storage;
};

/// Reads JSON texts (RFC 8259). Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT JSONReader
{
public:
    enum class TopLevel { Container, AnyValue };

    /// The deepest nesting that is read.
    static constexpr int maximumDepth = 1024;

    /// Parses @p utf8, which may begin with a byte order mark.
    ///
    /// Fails with NSCocoaErrorDomain / NSPropertyListReadCorruptError and a sentence that tells the reason:
    /// not JSON, not UTF-8, nested deeper than maximumDepth, or a scalar at the top level where only a
    /// @p topLevel container is accepted.
    static Result<JSONDocument> parse(QByteArrayView utf8, TopLevel topLevel = TopLevel::AnyValue);
};

} // namespace Quorvix
