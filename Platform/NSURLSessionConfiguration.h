#pragma once

#include "URLRequest.h"

namespace Quorvix {

/// How a session loads.
struct NSURLSessionConfiguration
{
    /// How long a connection may stay silent before the task fails with NSURLErrorTimedOut.
    std::chrono::milliseconds timeoutIntervalForRequest = std::chrono::seconds(60);
    /// Headers added to every request that does not set them itself.
    HTTPHeaderFields httpAdditionalHeaders;
    /// Whether requests carry the cookies of HTTPCookieStorage::shared() and responses fill it.
    bool httpShouldSetCookies = true;
    /// Whether completion handlers run on the main thread, in a later turn of its event loop, as they do
    /// while the session is captured. If not, the sessions' own thread calls them then.
    bool completesOnMainThread = false;
    /// How many bytes a body may have after its content codings are decoded. A longer one fails with
    /// NSURLErrorDataLengthExceedsMaximum, without its data. A server can compress a gigabyte to less than a
    /// megabyte, and a task keeps the whole body in memory: the default, a gigabyte, is more than an
    /// application reads at once, and less than what brings down a usual machine. On a machine of 32 bits
    /// memory may end first, with the same error. While a body with several codings, one over another, is
    /// decoded, it can need twice as much. Bodies without a content coding have no limit.
    qint64 maximumDecodedSize = Q_INT64_C(1) << 30;
};

} // namespace Quorvix
