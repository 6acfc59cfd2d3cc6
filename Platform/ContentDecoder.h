#pragma once

#include "Platform/Result.h"

#include <QtCore/QByteArray>

#include <functional>

class QIODevice;

namespace Quorvix {

/// Undoes the content codings of a body (RFC 9110, 8.4.1). Any thread.
///
/// Qt decodes, too, but it tells no error: of a body that is damaged, or compressed further than it expects,
/// nothing arrives.
namespace ContentDecoder {

/// What a request accepts: all that decode() knows, in the order in which Qt would name them.
inline constexpr char acceptedCodings[] = "zstd, br, gzip, deflate";

/// Whether decode() has anything to do: @p contentEncoding, the value of the header, names at least one
/// coding, and knows all of them. A body with an unknown coding is left as it is, because the header then
/// describes it.
[[nodiscard]] bool canDecode(const QByteArray &contentEncoding);

/// Reads @p coded to its end and undoes the codings, for which canDecode() is true. The result needs no more
/// memory than its size, but while several codings are undone, there are two bodies of up to @p maximumSize.
/// An empty body has an empty result, whatever its codings are.
///
/// Fails with the code of NSURLErrorDomain for data that breaks the rules of its coding, ends early or goes
/// on behind its end (NSURLErrorCannotDecodeRawData); for more codings than anybody uses, and when a decoder
/// has no memory (NSURLErrorCannotDecodeContentData); for a result of more than @p maximumSize bytes
/// (NSURLErrorDataLengthExceedsMaximum); and soon after @p isCancelled returns true (NSURLErrorCancelled).
[[nodiscard]] Result<QByteArray> decode(QIODevice &coded, const QByteArray &contentEncoding,
                                        qint64 maximumSize, const std::function<bool()> &isCancelled);

} // namespace ContentDecoder

} // namespace Quorvix
