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
    /// Reads @p response and takes @p data as its body; dated now.
    QXResponseTrace(const Quorvix::NSHTTPURLResponse &response, std::optional<QByteArray> data);

    qint64 statusCode;
    /// Absent when any name or value that the platform reported is not text.
    std::optional<Quorvix::HTTPHeaderFields> headers;
    /// As the session delivered it; shared, never copied. Absent when there was none.
    std::optional<QByteArray> body;
    /// When this record was built.
    std::chrono::system_clock::time_point date;

    bool operator==(const QXResponseTrace &) const = default;
};

[[nodiscard]] QUORVIX_CORE_EXPORT size_t qHash(const QXResponseTrace &trace, size_t seed = 0);
