#pragma once

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

} // namespace HTTPRedirect

} // namespace Quorvix
