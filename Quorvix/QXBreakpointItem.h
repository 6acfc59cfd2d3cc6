#pragma once

#include "Quorvix/QXBreakpointKey.h"

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/NSURLSessionDataTask.h"

#include <QtCore/QUuid>

/// One held response, with all the data that is needed to release it. A value; its body is shared, never
/// copied. Main thread, because the handler of the host belongs to it.
struct QUORVIX_CORE_EXPORT QXBreakpointItem
{
    /// A new identifier for every held response.
    QUuid id;
    /// The request as the host made it.
    Quorvix::URLRequest request;
    /// The identifier of the exchange's trace.
    QString requestId;
    /// The response as the session delivered it; never null.
    Quorvix::NSHTTPURLResponsePtr response;
    /// The body as the session delivered it; absent if there was none.
    std::optional<QByteArray> data;
    /// The error that was reported together with the response; absent for most responses.
    std::optional<Quorvix::NSError> error;
    /// The host's completion handler. Only the center calls it.
    Quorvix::DataTaskCompletionHandler completion;

    /// The key of the request; absent for a request without a URL.
    [[nodiscard]] std::optional<QXBreakpointKey> key() const;
    /// The display text of the key; empty for a request without a URL.
    [[nodiscard]] QString displayTitle() const;
};
