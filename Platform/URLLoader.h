#pragma once

#include "Platform/NSURLSessionTask.h"
#include "Platform/URLLoadSession.h"

#include <QtNetwork/QNetworkReply>

#include <atomic>
#include <memory>

namespace Quorvix {

/// One exchange under way; shared with the loading thread, which keeps it until the exchange is over.
struct URLLoadTask
{
    using State = NSURLSessionTaskState;

    std::shared_ptr<URLLoadSession> session;
    URLRequest request;
    DataTaskCompletionHandler completionHandler;
    std::atomic<State> state = State::Suspended;
    /// The request now on its way: the original one, or the one that a redirect led to.
    URLRequest current;
    int redirects = 0;
    /// Present while bytes are awaited; used in the loading thread only.
    QPointer<QNetworkReply> reply;
};

/// Sends the request. In the loading thread.
void startLoading(const std::shared_ptr<URLLoadTask> &task);
/// Ends the exchange, whether or not it was started. In the loading thread.
void cancelLoading(const std::shared_ptr<URLLoadTask> &task);

} // namespace Quorvix
