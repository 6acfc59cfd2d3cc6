#pragma once

#include "Platform/NSURLSessionTask.h"
#include "Platform/URLLoadSession.h"
#include "Platform/UploadDevice.h"

#include <QtNetwork/QNetworkReply>

#include <atomic>
#include <memory>

namespace Quorvix {

/// One running exchange. The loading thread shares it until the exchange has ended.
struct URLLoadTask
{
    using State = NSURLSessionTaskState;

    std::shared_ptr<URLLoadSession> session;
    URLRequest request;
    DataTaskCompletionHandler completionHandler;
    std::atomic<State> state = State::Suspended;
    /// The request that is being sent: the original one, or the one after a redirect.
    URLRequest current;
    int redirects = 0;
    /// How often the request was sent again because it had never left.
    int resends = 0;
    /// Whether Qt says that the request has left. In the loading thread only.
    bool isSent = false;
    /// The reply while it is still loading. In the loading thread only.
    QPointer<QNetworkReply> reply;
    /// What the reply sends, if that is not empty. In the loading thread only.
    QPointer<UploadDevice> upload;
};

/// Sends the request. In the loading thread only.
void startLoading(const std::shared_ptr<URLLoadTask> &task);
/// Ends the exchange, whether or not it was started. In the loading thread only.
void cancelLoading(const std::shared_ptr<URLLoadTask> &task);

} // namespace Quorvix
