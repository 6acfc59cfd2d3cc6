#pragma once

#include "NSURLSessionTask.h"
#include "URLRequest.h"

#include <memory>

namespace Quorvix {

struct URLLoadTask;

/// One exchange of a session. A new task is suspended and does nothing until resume(). Any thread.
class QUORVIX_CORE_EXPORT NSURLSessionDataTask
{
public:
    /// Where a task is between its creation and its end.
    using State = NSURLSessionTaskState;

    ~NSURLSessionDataTask();
    NSURLSessionDataTask(const NSURLSessionDataTask &) = delete;
    NSURLSessionDataTask &operator=(const NSURLSessionDataTask &) = delete;

    /// Starts the exchange. Does nothing when it was started or cancelled before.
    void resume();
    /// Ends the exchange with NSURLErrorCancelled, even when it was not started. Does nothing when it has
    /// ended.
    void cancel();

    /// The state at this moment; a running task may change it in another thread.
    [[nodiscard]] State state() const noexcept;
    /// The request that the task was made with.
    [[nodiscard]] const URLRequest &originalRequest() const noexcept;

private:
    friend class NSURLSession;
    explicit NSURLSessionDataTask(std::shared_ptr<URLLoadTask> load);

    std::shared_ptr<URLLoadTask> m_load;
};

/// A task belongs to the application and to the session that runs it.
using NSURLSessionDataTaskPtr = std::shared_ptr<NSURLSessionDataTask>;

} // namespace Quorvix
