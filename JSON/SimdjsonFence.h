#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <memory>

/// The one place that knows simdjson: no other file includes its header, names its error codes or relies on
/// its memory layout of a document. SimdjsonFence.cpp states its assumptions, and SimdjsonFenceTest has a row
/// for each, so that the test fails with a release that breaks one of them.
///
/// JSONTape reads the tape that simdjson writes, whose format is documented. SimdjsonFence.cpp also defines
/// the members of JSONDocument, which owns the tape.
///
/// simdjson throws nothing here. Any thread.
namespace Quorvix {
class JSONTape;
} // namespace Quorvix

namespace Quorvix::SimdjsonFence {

enum class Failure {
    Empty,
    NotUtf8,
    TooDeep,
    MalformedNumber,
    MalformedString,
    /// Larger than 4 GB, or than the available memory.
    TooLarge,
    NotJson,
};

struct Outcome
{
    /// The parsed data, which the copies of a JSONDocument share; null when there is a failure.
    std::shared_ptr<const JSONTape> tape;
    Failure failure = Failure::NotJson;
};

/// Parses a whole text. The text needs no padding, and the caller may free it afterwards. A byte order mark
/// is an error; an escape of a lone surrogate becomes U+FFFD.
[[nodiscard]] Outcome parse(QByteArrayView text);
/// The bytes that may be read behind a text.
inline constexpr qsizetype padding = 64;
/// Parses a text behind which padding more bytes can be read, without a copy of it. It does not
/// matter what they are.
[[nodiscard]] Outcome parsePadded(QByteArrayView text);
/// Parses a text that nobody else needs, from the byte @p from on, without a copy of it.
[[nodiscard]] Outcome parse(QByteArray &&text, qsizetype from);

/// Whether bytes are well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool isUtf8(QByteArrayView bytes) noexcept;

} // namespace Quorvix::SimdjsonFence
