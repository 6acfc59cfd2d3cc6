#pragma once

#include "Platform/NSError.h"
#include "Platform/URLRequest.h"

#include <optional>

namespace Quorvix {

/// Follows redirects (RFC 9110, 15.4).
namespace HTTPRedirect {

/// How many redirects one exchange follows.
inline constexpr int maximum = 20;

/// The request to send after @p request got a response with this status and Location header. @p request must
/// have a URL. Absent when the response is not a redirect. Any thread.
///
/// 301 and 302 change POST to GET, 303 changes every method except HEAD to GET; the others keep method and
/// body. A redirect to another origin removes the credentials.
[[nodiscard]] std::optional<URLRequest> follow(const URLRequest &request, int statusCode,
                                               const QByteArray &location);

/// Why the exchange ends with an error instead of this request, which is its redirect number @p count; absent
/// if the request may be sent. A redirect leads to the web only: no server can make the application read a
/// file. Any thread.
[[nodiscard]] std::optional<NSURLErrorCode> problem(const URLRequest &redirected, int count);

} // namespace HTTPRedirect

} // namespace Quorvix
