#pragma once

#include "JSON/JSONDocument.h"

#include "Platform/Result.h"

namespace Quorvix {

/// Reads JSON texts (RFC 8259). Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT JSONReader
{
public:
    enum class TopLevel { Container, AnyValue };

    /// The reader refuses a text that is nested deeper than this.
    static constexpr int maximumDepth = JSONDocument::maximumDepth;

    /// Parses @p utf8, which may begin with a byte order mark.
    ///
    /// Fails with NSCocoaErrorDomain / NSPropertyListReadCorruptError and a sentence that gives the reason:
    /// not JSON, not UTF-8, nested deeper than maximumDepth, or a scalar at the top level where only a
    /// @p topLevel container is accepted.
    static Result<JSONDocument> parse(QByteArrayView utf8, TopLevel topLevel = TopLevel::AnyValue);
};

} // namespace Quorvix
