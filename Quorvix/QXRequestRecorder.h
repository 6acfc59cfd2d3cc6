#pragma once

#include "Quorvix/QXMoment.h"
#include "Quorvix/QXTraceList.h"
#include "Quorvix/QuorvixNotifications.h"

#include <QtCore/QHash>
#include <QtCore/QList>

#include <mutex>

/// The store of captured exchanges, newest first, kept in memory until clear(). Main thread only.
///
/// The cost of recording and of reading `requests` does not depend on the number of traces. Completing
/// searches for the trace from the newest one on. The trace is nearly always among the newest, so this is
/// fast too.
class QUORVIX_CORE_EXPORT QXRequestRecorder
{
public:
    /// The only recorder; created on first use, lives until the process ends.
    [[nodiscard]] static QXRequestRecorder &shared();

    QXRequestRecorder() = default;
    QXRequestRecorder(const QXRequestRecorder &) = delete;
    QXRequestRecorder &operator=(const QXRequestRecorder &) = delete;

    /// A snapshot of the current traces; later changes do not affect it. Taking one costs the same for any
    /// number of traces.
    [[nodiscard]] QXTraceList requests() const noexcept { return m_requests; }

    /// Adds a trace of @p request, which started at @p start, to the front.
    void record(const QString &id, const Quorvix::URLRequest &request,
                const QXMoment &start = QXMoment::now());

    /// Replaces the request of the newest trace with this identifier; does nothing if there is none. Its date
    /// and result stay.
    void amend(const QString &id, const Quorvix::URLRequest &request);

    /// Stores the result in the newest trace with this identifier; does nothing if there is none. A response
    /// that is not an HTTP response is ignored, together with its data. The duration ends at @p end.
    void complete(const QString &id, const Quorvix::NSURLResponsePtr &response,
                  const std::optional<QByteArray> &data, const std::optional<Quorvix::NSError> &error,
                  const QXMoment &end = QXMoment::now());

    /// Stores what has arrived so far in the newest trace with this identifier: a response without a
    /// duration. It stays until the next call or the completion. Does nothing if there is no such trace, if
    /// the trace is complete, or if the response is not an HTTP response.
    void progress(const QString &id, const Quorvix::NSURLResponsePtr &response,
                  const std::optional<QByteArray> &data);
    /// Sets what refresh() calls: the source of a running exchange, which answers with progress() or
    /// complete(), at once or later. Does nothing if there is no running trace with this identifier. The
    /// function is destroyed when the exchange completes and by clear().
    void setRefresher(const QString &id, std::function<void()> refresher);
    /// Adds a source of many exchanges, which refresh() asks when nobody has set a function for the exchange:
    /// it returns whether it knows the exchange. For the life of the process. Any thread.
    void addSource(std::function<bool(const QString &id)> refresher);
    /// Asks the source of a running exchange for what has arrived so far. Returns whether there is one to
    /// ask.
    bool refresh(const QString &id);

    /// Removes all traces. The memory of large bodies returns to the system soon after the last snapshot of
    /// them is destroyed.
    void clear();

    /// Returns copies of the traces for which @p predicate is true, in stored order. The predicate may change
    /// the recorder; the search goes on in the traces of its beginning.
    [[nodiscard]] QList<QXRequestTrace>
    findRequests(const std::function<bool(const QXRequestTrace &)> &predicate) const;
    /// The traces whose URL's path extension contains @p path.
    [[nodiscard]] QList<QXRequestTrace> findRequestsByPath(const QString &path) const;
    /// The traces whose response has this status code.
    [[nodiscard]] QList<QXRequestTrace> findRequestsByStatusCode(qint64 statusCode) const;
    /// The traces whose method is exactly @p method.
    [[nodiscard]] QList<QXRequestTrace> findRequestsByMethod(const QString &method) const;

private:
    static std::shared_ptr<QXTraceList::Cell> makeCell(const QString &id, const Quorvix::URLRequest &request,
                                                       const QXMoment &start);
    void replace(qsizetype index, QXTraceList::CellPtr cell);

    QXTraceList m_requests;
    /// The sum of what all bodies needed when they arrived.
    qsizetype m_bodyBytes = 0;
    QHash<QString, std::function<void()>> m_refreshers;
    std::mutex m_sourcesMutex;
    QList<std::function<bool(const QString &)>> m_sources;
};
