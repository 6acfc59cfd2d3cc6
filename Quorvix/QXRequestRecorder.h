#pragma once

#include "Quorvix/QXTraceList.h"
#include "Quorvix/QuorvixNotifications.h"

#include <QtCore/QList>

/// The store of captured exchanges, newest first, kept in memory until clear(). Main thread only.
///
/// Recording and reading `requests` cost the same however many traces there are. Completing looks for the
/// trace from the newest on, where it nearly always is, and costs the same from there.
class QUORVIX_CORE_EXPORT QXRequestRecorder
{
public:
    /// The one recorder; made on first use, lives until the process ends.
    [[nodiscard]] static QXRequestRecorder &shared();

    QXRequestRecorder() = default;
    QXRequestRecorder(const QXRequestRecorder &) = delete;
    QXRequestRecorder &operator=(const QXRequestRecorder &) = delete;

    /// The traces now held: a snapshot that later changes leave alone.
    [[nodiscard]] const QXTraceList &requests() const noexcept { return m_requests; }

    /// Adds a trace of @p request to the front.
    void record(const QString &id, const Quorvix::URLRequest &request);

    /// Fills in the outcome of the newest trace with this identifier; does nothing when there is none.
    /// A response that is not an HTTP response is ignored, and its data with it.
    void complete(const QString &id, const Quorvix::NSURLResponsePtr &response,
                  const std::optional<QByteArray> &data, const std::optional<Quorvix::NSError> &error);

    /// Drops all traces.
    void clear();

    /// The traces for which @p predicate holds, in stored order, as copies.
    [[nodiscard]] QList<QXRequestTrace>
    findRequests(const std::function<bool(const QXRequestTrace &)> &predicate) const;
    /// The traces whose URL's path extension contains @p path.
    [[nodiscard]] QList<QXRequestTrace> findRequestsByPath(const QString &path) const;
    /// The traces whose response has this status code.
    [[nodiscard]] QList<QXRequestTrace> findRequestsByStatusCode(qint64 statusCode) const;
    /// The traces whose method is exactly @p method.
    [[nodiscard]] QList<QXRequestTrace> findRequestsByMethod(const QString &method) const;

private:
    QXTraceList m_requests;
};
