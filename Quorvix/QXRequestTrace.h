#pragma once

#include "Quorvix/QXFailureNote.h"
#include "Quorvix/QXResponseTrace.h"

/// One captured exchange: the request, the time it was sent, and its result.
///
/// A value. Comparison and hash use only `id`, so that an exchange keeps its identity when it completes.
struct QUORVIX_CORE_EXPORT QXRequestTrace
{
    using ID = QString;

    /// Makes a trace of @p request with the current time and without a result.
    QXRequestTrace(QString id, const Quorvix::URLRequest &request);

    QString id;
    std::optional<QUrl> url;
    std::optional<QString> method;
    /// Absent when the request has none.
    std::optional<Quorvix::HTTPHeaderFields> headers;
    /// Shared, never copied. Absent for a request without a body.
    std::optional<QByteArray> body;
    std::chrono::system_clock::time_point date;
    /// Absent until the exchange completes with an HTTP response.
    std::optional<QXResponseTrace> response;
    /// Absent unless the exchange completed with an error.
    std::optional<QXFailureNote> error;
    /// Seconds from `date` to completion; absent until then.
    std::optional<double> duration;

    bool operator==(const QXRequestTrace &other) const { return id == other.id; }
};

[[nodiscard]] inline size_t qHash(const QXRequestTrace &trace, size_t seed = 0)
{
    return qHash(trace.id, seed);
}
