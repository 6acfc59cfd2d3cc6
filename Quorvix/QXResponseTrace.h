#pragma once

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/PlatformGlobal.h"
#include "Platform/URLRequest.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <optional>

/// The HTTP response of one exchange. A value; compares and hashes over all its fields.
struct QUORVIX_CORE_EXPORT QXResponseTrace
{
    /// Copies @p response, with @p data as its body and the current time.
    QXResponseTrace(const Quorvix::NSHTTPURLResponse &response, std::optional<QByteArray> data);

    qint64 statusCode;
    /// Absent when any name or value that the platform reported is not text.
    std::optional<Quorvix::HTTPHeaderFields> headers;
    /// The body as the session delivered it; shared, never copied. Absent if there was none.
    std::optional<QByteArray> body;
    /// The time when this record was made.
    std::chrono::system_clock::time_point date;

    bool operator==(const QXResponseTrace &) const = default;
};

[[nodiscard]] QUORVIX_CORE_EXPORT size_t qHash(const QXResponseTrace &trace, size_t seed = 0);
