#pragma once

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/PlatformGlobal.h"
#include "Platform/URLRequest.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <optional>

/// The HTTP response of one exchange. A value; any thread. Compares and hashes over all its fields.
struct QUORVIX_CORE_EXPORT QXResponseTrace
{
    /// Copies @p response, with @p data as its body and the current time.
    QXResponseTrace(const Quorvix::NSHTTPURLResponse &response, std::optional<QByteArray> data);
    /// The same with another time.
    QXResponseTrace(const Quorvix::NSHTTPURLResponse &response, std::optional<QByteArray> data,
                    std::chrono::system_clock::time_point time);

    /// The status code, as 200.
    qint64 statusCode;
    /// Absent when any name or value that the platform reported is not text.
    std::optional<Quorvix::StoredHeaderFields> headers;
    /// The body as the session delivered it; shared, never copied. Absent if there was none, and when the
    /// body was removed.
    std::optional<QByteArray> body;
    /// The size in bytes of a body that was removed to stay within QXRequestRecorder::bodyBudget(); absent
    /// for a body that is kept, and for a response that has none.
    std::optional<qsizetype> discardedBodySize = {};
    /// The time when this record was made.
    std::chrono::system_clock::time_point date;

    /// Whether all fields are equal.
    bool operator==(const QXResponseTrace &) const = default;
};

/// The hash over all fields. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT size_t qHash(const QXResponseTrace &trace, size_t seed = 0);
