#pragma once

#include "Quorvix/QXMoment.h"
#include "Quorvix/QXTraceList.h"
#include "Quorvix/QuorvixNotifications.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QPointer>

#include <atomic>
#include <deque>
#include <limits>
#include <mutex>

/// The store of captured exchanges, newest first, kept in memory until clear(). Main thread only, except
/// where a function says otherwise.
///
/// The cost of recording and of reading `requests` does not depend on the number of traces. Completing
/// searches for the trace from the newest one on. The trace is nearly always among the newest, so this is
/// fast too.
class QUORVIX_CORE_EXPORT QXRequestRecorder
{
public:
    /// The only recorder; created on first use, lives until the process ends.
    [[nodiscard]] static QXRequestRecorder &shared();

    /// A recorder of its own, which nobody reports to: for tests of what reads one. Main thread.
    QXRequestRecorder() = default;
    QXRequestRecorder(const QXRequestRecorder &) = delete;
    QXRequestRecorder &operator=(const QXRequestRecorder &) = delete;

    /// A snapshot of the current traces; later changes do not affect it. Taking one costs the same for any
    /// number of traces.
    [[nodiscard]] QXTraceList requests() const noexcept { return m_requests; }

    /// Limits the sum of the sizes of all kept bodies, of requests and of responses, to @p bytes; without a
    /// value there is no limit, as at first. A negative limit counts as 0.
    ///
    /// Bodies that arrived first are removed first, at once and as others arrive; a body that alone exceeds
    /// the budget is not kept at all. The trace stays, with everything else, and its discardedBodySize tells
    /// what was removed. The cost for an exchange stays the same for any number of traces. A body that an
    /// open screen or a snapshot shares stays in memory until that is gone. Bodies that were removed do not
    /// come back with a larger budget. Main thread.
    void setBodyBudget(std::optional<qsizetype> bytes);
    /// The budget in bytes; absent if there is none. Any thread.
    [[nodiscard]] std::optional<qsizetype> bodyBudget() const noexcept;

    /// Adds a trace of @p request, which started at @p start, to the front.
    void record(const QString &id, const Quorvix::URLRequest &request,
                const QXMoment &start = QXMoment::now());

    /// Replaces the request of the newest trace with this identifier; does nothing if there is none. Its date
    /// and result stay. @p discardedBodySize is the size in bytes of a body that the source has not kept.
    void amend(const QString &id, const Quorvix::URLRequest &request,
               std::optional<qsizetype> discardedBodySize = {});

    /// Stores the result in the newest trace with this identifier; does nothing if there is none. A response
    /// that is not an HTTP response is ignored, together with its data. The duration ends at @p end.
    /// @p discardedBodySize is the size in bytes of a body that the source has not kept; @p data is absent
    /// then.
    void complete(const QString &id, const Quorvix::NSURLResponsePtr &response,
                  const std::optional<QByteArray> &data, const std::optional<Quorvix::NSError> &error,
                  const QXMoment &end = QXMoment::now(), std::optional<qsizetype> discardedBodySize = {});

    /// Stores what has arrived so far in the newest trace with this identifier: a response without a
    /// duration. It stays until the next call or the completion. Does nothing if there is no such trace, if
    /// the trace is complete, or if the response is not an HTTP response.
    void progress(const QString &id, const Quorvix::NSURLResponsePtr &response,
                  const std::optional<QByteArray> &data, std::optional<qsizetype> discardedBodySize = {});
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
    friend class QXExitArchive;
    enum class Side { Request, Response };
    /// Where a body is: the position of its trace, counted from the oldest, never changes.
    struct BodyPlace
    {
        qsizetype position;
        Side side;
    };

    static void discard(QXRequestTrace &trace, Side side);
    /// The sizes of the bodies of one exchange, in bytes.
    struct BodySizes
    {
        qsizetype request = 0;
        qsizetype response = 0;
        [[nodiscard]] qsizetype sum() const { return request + response; }
    };

    /// A body whose buffer is larger than it.
    struct LooseBody
    {
        BodyPlace place{};
        int looks = 0;
    };

    static std::optional<QByteArray> *bodyAt(QXRequestTrace &trace, Side side);
    static bool isLoose(const std::optional<QByteArray> &body);
    void noteLoose(QXRequestTrace &trace, qsizetype position);
    void tightenLater();
    void tighten();
    static BodySizes bodySizes(const QXRequestTrace &trace);
    template<typename Change>
    void change(qsizetype index, Change makeChange);
    void postChange() const;
    void remember(qsizetype position, BodySizes now, BodySizes before);
    void discardTooLarge(QXRequestTrace &trace);
    void admit(QXRequestTrace &trace, qsizetype position, BodySizes before);
    void removeOldestBodies();

    static constexpr qsizetype noBudget = std::numeric_limits<qsizetype>::max();

    QXTraceList m_requests;
    /// The sum of the sizes of all bodies.
    qsizetype m_bodyBytes = 0;
    std::atomic<qsizetype> m_bodyBudget = noBudget;
    /// The bodies in the order in which they arrived, while there is a budget; also of some that are gone.
    std::deque<BodyPlace> m_bodies;
    std::deque<LooseBody> m_looseBodies;
    /// The application whose timer runs. Null again when that ends before the timer.
    QPointer<QObject> m_tighteningIn;
    /// It ends with the recorder.
    std::shared_ptr<const bool> m_life = std::make_shared<const bool>(true);
    /// Whether observers hear of changes; not at the end of the application.
    bool m_isQuiet = false;
    QHash<QString, std::function<void()>> m_refreshers;
    std::mutex m_sourcesMutex;
    QList<std::function<bool(const QString &)>> m_sources;
};
