#pragma once

#include "Platform/HostCompletion.h"

namespace Quorvix {

/// A completion handler for a task that hands the outcome to the host's handler on the main thread, in a
/// later turn of its event loop.
///
/// What has not been delivered when the application ends is dropped, and the host's handler is destroyed on
/// the main thread. Any thread may call it, once.
class MainThreadCompletion final
{
public:
    /// Runs on the main thread, with the outcome and the host's handler.
    using Deliver = std::function<void(const std::optional<QByteArray> &, const NSURLResponsePtr &,
                                       const std::optional<NSError> &, const DataTaskCompletionHandler &)>;

    /// Runs on the main thread if the application ends before the delivery; see MainActor::scheduleReport().
    using Report = std::function<void(const std::optional<QByteArray> &, const NSURLResponsePtr &,
                                      const std::optional<NSError> &)>;

    /// Calls @p host.
    explicit MainThreadCompletion(DataTaskCompletionHandler host);
    /// Calls @p deliver in place of @p host.
    MainThreadCompletion(DataTaskCompletionHandler host, Deliver deliver, Report report);

    void operator()(std::optional<QByteArray> data, NSURLResponsePtr response, std::optional<NSError> error);

private:
    HostCompletion m_host;
    Deliver m_deliver;
    /// May be null.
    Report m_report;
};

} // namespace Quorvix
