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
};

} // namespace Quorvix
