#pragma once

#include "Quorvix/QXFailureNote.h"
#include "Quorvix/QXResponseTrace.h"

/// One captured exchange: the request, the time it was sent, and its result.
///
/// A value; any thread. Comparison and hash use only `id`, so that an exchange keeps its identity when it
/// completes.
struct QUORVIX_CORE_EXPORT QXRequestTrace
{
    /// The type of the identifier.
    using ID = QString;

    /// Makes a trace of @p request with the current time and without a result.
    QXRequestTrace(QString id, const Quorvix::URLRequest &request);
    /// The same of a request that was sent at @p sentAt.
    QXRequestTrace(QString id, const Quorvix::URLRequest &request,
                   std::chrono::system_clock::time_point sentAt);

    /// The identity of the exchange, never empty: a UUID in upper case.
    QString id;
    /// The URL of the request; absent if it had none.
    std::optional<QUrl> url;
    /// The method as the request names it; absent if it names none, which sends a GET.
    std::optional<QString> method;
    /// Absent when the request has none.
    std::optional<Quorvix::StoredHeaderFields> headers;
    /// Shared, never copied. Absent for a request without a body, and when the body was removed.
    std::optional<QByteArray> body;
    /// The size in bytes of a body that was removed to stay within QXRequestRecorder::bodyBudget(); absent
    /// for a body that is kept, and for a request that has none.
    std::optional<qsizetype> discardedBodySize;
    /// The time when the request was sent.
    std::chrono::system_clock::time_point date;
    /// Absent until the exchange completes with an HTTP response.
    std::optional<QXResponseTrace> response;
    /// Absent unless the exchange completed with an error.
    std::optional<QXFailureNote> error;
    /// Seconds from `date` to completion; absent until then.
    std::optional<double> duration;

    /// Whether both are the same exchange.
    bool operator==(const QXRequestTrace &other) const { return id == other.id; }
};

/// The hash of the identifier. Any thread.
[[nodiscard]] inline size_t qHash(const QXRequestTrace &trace, size_t seed = 0)
{
    return qHash(trace.id, seed);
}
