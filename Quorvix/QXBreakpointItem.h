#pragma once

#include "Quorvix/QXBreakpointKey.h"

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/NSURLSessionDataTask.h"

#include <QtCore/QUuid>

/// One held response, with all the data that is needed to release it. A value; its body is shared, never
/// copied.
struct QUORVIX_INTERNAL_EXPORT QXBreakpointItem
{
    /// A new identifier for every held response.
    QUuid id;
    Quorvix::URLRequest request;
    /// The identifier of the exchange's trace.
    QString requestId;
    /// The response as the session delivered it; never null.
    Quorvix::NSHTTPURLResponsePtr response;
    std::optional<QByteArray> data;
    std::optional<Quorvix::NSError> error;
    /// The host's completion handler.
    Quorvix::DataTaskCompletionHandler completion;

    [[nodiscard]] std::optional<QXBreakpointKey> key() const;
    /// The display text of the key; empty for a request without a URL.
    [[nodiscard]] QString displayTitle() const;
};
