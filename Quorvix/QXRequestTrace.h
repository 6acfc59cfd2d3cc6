#pragma once

#include "Quorvix/QXFailureNote.h"
#include "Quorvix/QXResponseTrace.h"

/// One captured exchange: the request, when it was sent, and what became of it.
///
/// A value; compares and hashes by `id` alone, so that an exchange stays the same one while it completes.
struct QUORVIX_CORE_EXPORT QXRequestTrace
{
    using ID = QString;

    /// A fresh trace of @p request, dated now, without an outcome.
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
