#pragma once

#include "Platform/NSError.h"
#include "Platform/NSURLResponse.h"
#include "Platform/URLRequest.h"

#include <functional>
#include <memory>

/// What a data task hands over when it ends: the whole body, the response and the error, each optional.
using DataTaskCompletionHandler =
    std::function<void(std::optional<QByteArray>, NSURLResponsePtr, std::optional<NSError>)>;

/// One exchange of a session. Made suspended; does nothing until resume(). Any thread.
class QUORVIX_PLATFORM_EXPORT NSURLSessionDataTask
{
public:
    enum class State { Running, Suspended, Canceling, Completed };

    ~NSURLSessionDataTask();
    NSURLSessionDataTask(const NSURLSessionDataTask &) = delete;
    NSURLSessionDataTask &operator=(const NSURLSessionDataTask &) = delete;

    /// Starts the exchange. Does nothing when it was started or cancelled before.
    void resume();
    /// Ends the exchange with NSURLErrorCancelled, also one that was not started. Does nothing once it is
    /// over.
    void cancel();

    [[nodiscard]] State state() const noexcept;
    [[nodiscard]] const URLRequest &originalRequest() const noexcept;

    struct Core;

private:
    friend class NSURLSession;
    explicit NSURLSessionDataTask(std::shared_ptr<Core> core);

    std::shared_ptr<Core> m_core;
};

using NSURLSessionDataTaskPtr = std::shared_ptr<NSURLSessionDataTask>;
