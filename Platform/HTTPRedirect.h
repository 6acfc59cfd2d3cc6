#pragma once

#include "Platform/URLRequest.h"

#include <optional>

namespace Quorvix {

/// Where redirects lead (RFC 9110, 15.4).
namespace HTTPRedirect {

/// How many redirects one exchange follows.
inline constexpr int maximum = 20;

/// The request that follows @p request, which has a URL, after a response with this status and Location
/// header. Absent when the response is no redirect. Any thread.
///
/// 301 and 302 turn POST into GET, 303 turns all but HEAD; the others keep method and body. Credentials stay
/// with the origin that they were given for.
[[nodiscard]] std::optional<URLRequest> follow(const URLRequest &request, int statusCode,
                                               const QByteArray &location);

} // namespace HTTPRedirect

} // namespace Quorvix
