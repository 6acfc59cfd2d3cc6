#pragma once

#include "JSON/JSONDocument.h"

#include "Platform/Result.h"

namespace Quorvix {

namespace SimdjsonFence {
struct Outcome;
} // namespace SimdjsonFence

/// Reads JSON texts (RFC 8259). Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT JSONReader
{
public:
    enum class TopLevel { Container, AnyValue };

    /// The reader refuses a text that is nested deeper than this.
    static constexpr int maximumDepth = JSONDocument::maximumDepth;

    /// Parses a text in UTF-8, with or without a byte order mark, or in UTF-16 or UTF-32 with one. A lone
    /// surrogate in an escape, as in "\ud83d", becomes U+FFFD.
    ///
    /// Fails with NSCocoaErrorDomain / NSPropertyListReadCorruptError and a sentence that gives the reason:
    /// not JSON, not UTF-8, nested deeper than maximumDepth, or a scalar at the top level where only a
    /// @p topLevel container is accepted.
    static Result<JSONDocument> parse(QByteArrayView bytes, TopLevel topLevel = TopLevel::AnyValue);
    /// Like parse(), and without a copy of a text whose array has a capacity of so many bytes more: the
    /// reader reads on there, whatever it finds.
    static Result<JSONDocument> parseInPlace(QByteArray bytes, TopLevel topLevel = TopLevel::AnyValue);
    static constexpr qsizetype padding = 64;

    /// Parses a text as parse() does. Faster and with less memory than that for a text that the caller gives
    /// up.
    static Result<JSONDocument> parseAndFree(QByteArray bytes);

    /// A fast check that rejects most texts without a container at the top level. parse() reports a wrong
    /// beginning only after it has read the whole text.
    [[nodiscard]] static bool beginsLikeContainer(QByteArrayView bytes) noexcept;

private:
    static Result<JSONDocument> documentOf(SimdjsonFence::Outcome outcome, TopLevel topLevel);
};

} // namespace Quorvix
