#pragma once

#include <QtCore/QByteArrayView>

#include <memory>

/// The one place that knows simdjson: no other file includes its header, names its error codes or relies on
/// how it lays out a document. SimdjsonFence.cpp tells what it takes for granted; for each of these things
/// SimdjsonFenceTest has a row, so that a release that changes one of them fails there.
///
/// JSONValue and JSONDocument stand inside the fence too: their members are defined in SimdjsonFence.cpp,
/// because a value is a cursor of simdjson's and a call in between would cost more than the reading.
///
/// Nothing here throws on account of simdjson. Any thread.
namespace Quorvix::SimdjsonFence {

enum class Failure {
    Empty,
    NotUtf8,
    TooDeep,
    MalformedNumber,
    MalformedString,
    /// Beyond 4 GB, or beyond the memory that there is.
    TooLarge,
    NotJson,
};

struct Outcome
{
    /// What a JSONDocument shares; null when there is a failure.
    std::shared_ptr<const void> storage;
    Failure failure = Failure::NotJson;
};

/// Parses a whole text, which needs no padding and may go afterwards. A byte order mark is no part of JSON.
[[nodiscard]] Outcome parse(QByteArrayView text);

/// Whether bytes are well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool isUtf8(QByteArrayView bytes) noexcept;

} // namespace Quorvix::SimdjsonFence
