#include "Quorvix/QXRequestRecorder.h"

#include "Platform/FreedMemory.h"
#include "Platform/MainActor.h"
#include "Platform/NSNotificationCenter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <algorithm>
#include <utility>

using namespace Quorvix;

namespace {

/// The text after the last dot of the last path component. Empty without a dot, and for a name whose only
/// dot is its first character.
QString pathExtension(const QUrl &url)
{
    QString path = url.path(QUrl::FullyDecoded);
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    const QString name = path.mid(path.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString();
}

qsizetype sizeOf(const std::optional<QByteArray> &body)
{
    return body ? body->size() : 0;
}

/// Whether nobody else has this buffer. A copy that is made and destroyed synchronises with the thread that
/// gave up its own last.
bool isUnshared(const QByteArray &bytes)
{
    if (!bytes.isDetached())
        return false;
    const QByteArray copy = bytes; // NOLINT(performance-unnecessary-copy-initialization)
    return true;
}

/// Works for the request and for the response.
void discardBody(auto &half)
{
    half.discardedBodySize = half.body->size();
    half.body.reset();
}

} // namespace

QXRequestRecorder &QXRequestRecorder::shared()
{
    static auto *const recorder = new QXRequestRecorder;
    return *recorder;
}

void QXRequestRecorder::postChange() const
{
    if (!m_isQuiet)
        NSNotificationCenter::defaultCenter().post(QuorvixRequestsChanged);
}

QXRequestRecorder::BodySizes QXRequestRecorder::bodySizes(const QXRequestTrace &trace)
{
    return {sizeOf(trace.body), trace.response ? sizeOf(trace.response->body) : 0};
}

void QXRequestRecorder::setBodyBudget(std::optional<qsizetype> bytes)
{
    Q_ASSERT(MainActor::isCurrent());
    m_bodyBudget.store(bytes ? std::max<qsizetype>(*bytes, 0) : noBudget, std::memory_order_relaxed);
    m_bodies.clear();
    if (!bytes)
        return;
    const qsizetype before = m_bodyBytes;
    for (qsizetype position = 0; position < m_requests.size(); ++position) {
        const qsizetype index = m_requests.size() - 1 - position;
        const BodySizes sizes = bodySizes(m_requests[index]);
        remember(position, sizes, {});
        // A cell that stays as it is must not be copied for a snapshot.
        if (std::max(sizes.request, sizes.response) <= m_bodyBudget.load(std::memory_order_relaxed))
            continue;
        QXRequestTrace &trace = m_requests.ownCell(index).trace;
        discardTooLarge(trace);
        m_bodyBytes += bodySizes(trace).sum() - sizes.sum();
    }
    removeOldestBodies();
    if (m_bodyBytes == before)
        return;
    FreedMemory::note(before - m_bodyBytes);
    postChange();
}

std::optional<qsizetype> QXRequestRecorder::bodyBudget() const noexcept
{
    const qsizetype budget = m_bodyBudget.load(std::memory_order_relaxed);
    return budget == noBudget ? std::nullopt : std::optional(budget);
}

void QXRequestRecorder::discard(QXRequestTrace &trace, Side side)
{
    if (side == Side::Request)
        discardBody(trace);
    else
        discardBody(*trace.response);
}

/// Notes the bodies that have arrived and are kept. @p before has the sizes of those that were there already.
void QXRequestRecorder::remember(qsizetype position, BodySizes now, BodySizes before)
{
    const qsizetype budget = m_bodyBudget.load(std::memory_order_relaxed);
    if (budget == noBudget)
        return;
    const auto rememberSide = [&](Side side, qsizetype size, qsizetype former) {
        if (size > 0 && size <= budget && former == 0)
            m_bodies.push_back({position, side});
    };
    rememberSide(Side::Request, now.request, before.request);
    rememberSide(Side::Response, now.response, before.response);
}

void QXRequestRecorder::discardTooLarge(QXRequestTrace &trace)
{
    const qsizetype budget = m_bodyBudget.load(std::memory_order_relaxed);
    const BodySizes sizes = bodySizes(trace);
    if (sizes.request > budget)
        discard(trace, Side::Request);
    if (sizes.response > budget)
        discard(trace, Side::Response);
}

/// Counts the bodies of a trace that is new or has changed, and applies the budget to them.
void QXRequestRecorder::admit(QXRequestTrace &trace, qsizetype position, BodySizes before)
{
    remember(position, bodySizes(trace), before);
    discardTooLarge(trace);
    m_bodyBytes += bodySizes(trace).sum() - before.sum();
    noteLoose(trace, position);
    removeOldestBodies();
}

std::optional<QByteArray> *QXRequestRecorder::bodyAt(QXRequestTrace &trace, Side side)
{
    if (side == Side::Request)
        return &trace.body;
    return trace.response ? &trace.response->body : nullptr;
}

bool QXRequestRecorder::isLoose(const std::optional<QByteArray> &body)
{
    return body && body->capacity() > body->size() + body->size() / 64 + 32;
}

/// A body that has grown to its size can have twice the memory that it needs.
void QXRequestRecorder::noteLoose(QXRequestTrace &trace, qsizetype position)
{
    for (const Side side : {Side::Request, Side::Response}) {
        const auto *const body = bodyAt(trace, side);
        if (!body || !isLoose(*body))
            continue;
        // An exchange whose progress is shown changes often.
        constexpr qsizetype sides = 2;
        const auto isNoted = [&](const LooseBody &loose) {
            return loose.place.position == position && loose.place.side == side;
        };
        const auto last = m_looseBodies.crbegin();
        if (std::none_of(last, last + std::min<qsizetype>(sides, std::ssize(m_looseBodies)), isNoted))
            m_looseBodies.push_back({{position, side}});
    }
    if (!m_looseBodies.empty())
        tightenLater();
}

void QXRequestRecorder::tightenLater()
{
    QCoreApplication *const application = QCoreApplication::instance();
    if (!application || m_tighteningIn == application)
        return;
    m_tighteningIn = application;
    // The host and the loading thread give up their copies soon after the exchange has ended.
    constexpr std::chrono::milliseconds delay{500};
    QTimer::singleShot(delay, application, [this, life = std::weak_ptr(m_life)] {
        if (!life.expired())
            tighten();
    });
}

/// Returns memory that the buffers of bodies have too much. A buffer that nobody shares becomes smaller where
/// it is. One that the host shares stays: a copy would take more memory than it saves as long as the host
/// has its own. It is looked at again a few times; a host that has it still then is likely to keep it.
void QXRequestRecorder::tighten()
{
    constexpr std::size_t mostPerTurn = 256;
    constexpr int mostLooks = 8;
    m_tighteningIn = nullptr;
    bool looksAgain = m_looseBodies.size() > mostPerTurn;
    for (std::size_t count = std::min(m_looseBodies.size(), mostPerTurn); count > 0; --count) {
        LooseBody loose = m_looseBodies.front();
        m_looseBodies.pop_front();
        const qsizetype index = m_requests.size() - 1 - loose.place.position;
        QXTraceList::Cell *const cell = m_requests.uniqueCell(index);
        if (!cell) {
            // A snapshot that is alive, such as an open list, may stay so for long. The next change asks.
            m_looseBodies.push_back(loose);
            continue;
        }
        auto *const body = bodyAt(cell->trace, loose.place.side);
        if (!body || !isLoose(*body))
            continue;
        if (isUnshared(**body)) {
            (*body)->squeeze();
        } else if (++loose.looks < mostLooks) {
            m_looseBodies.push_back(loose);
            looksAgain = true;
        }
    }
    if (looksAgain)
        tightenLater();
}

void QXRequestRecorder::removeOldestBodies()
{
    const qsizetype budget = m_bodyBudget.load(std::memory_order_relaxed);
    while (m_bodyBytes > budget && !m_bodies.empty()) {
        const BodyPlace place = m_bodies.front();
        m_bodies.pop_front();
        const qsizetype index = m_requests.size() - 1 - place.position;
        const BodySizes sizes = bodySizes(m_requests[index]);
        const qsizetype size = place.side == Side::Request ? sizes.request : sizes.response;
        if (size == 0)
            continue;
        discard(m_requests.ownCell(index).trace, place.side);
        m_bodyBytes -= size;
    }
}

void QXRequestRecorder::record(const QString &id, const URLRequest &request, const QXMoment &start)
{
    Q_ASSERT(MainActor::isCurrent());
    auto cell = std::make_shared<QXTraceList::Cell>(
        QXTraceList::Cell{QXRequestTrace(id, request, start.date), start.steady});
    QXRequestTrace &trace = cell->trace;
    m_requests.prepend(std::move(cell));
    admit(trace, m_requests.size() - 1, {});
    postChange();
}

/// Changes a stored trace by calling @p makeChange with its cell.
template<typename Change>
void QXRequestRecorder::change(qsizetype index, Change makeChange)
{
    QXTraceList::Cell &cell = m_requests.ownCell(index);
    const BodySizes before = bodySizes(cell.trace);
    makeChange(cell);
    admit(cell.trace, m_requests.size() - 1 - index, before);
    postChange();
}

void QXRequestRecorder::amend(const QString &id, const URLRequest &request,
                              std::optional<qsizetype> discardedBodySize)
{
    Q_ASSERT(MainActor::isCurrent());
    const qsizetype index = m_requests.indexOf(id);
    if (index < 0)
        return;
    change(index, [&](QXTraceList::Cell &cell) {
        QXRequestTrace amended(id, request, cell.trace.date);
        amended.discardedBodySize = discardedBodySize;
        amended.response = std::move(cell.trace.response);
        amended.error = std::move(cell.trace.error);
        amended.duration = cell.trace.duration;
        cell.trace = std::move(amended);
    });
}

void QXRequestRecorder::complete(const QString &id, const NSURLResponsePtr &response,
                                 const std::optional<QByteArray> &data, const std::optional<NSError> &error,
                                 const QXMoment &end, std::optional<qsizetype> discardedBodySize)
{
    Q_ASSERT(MainActor::isCurrent());
    const qsizetype index = m_requests.indexOf(id);
    if (index < 0)
        return;

    if (!m_refreshers.isEmpty())
        m_refreshers.remove(id);
    change(index, [&](QXTraceList::Cell &cell) {
        QXRequestTrace &trace = cell.trace;
        // A preview is no result: an exchange ends alike, whether or not the user looked at it.
        if (!trace.duration)
            trace.response.reset();
        trace.duration = std::chrono::duration<double>(end.steady - cell.recordedAt).count();
        if (error)
            trace.error = QXFailureNote(*error);
        if (const auto *http = dynamic_cast<const NSHTTPURLResponse *>(response.get())) {
            trace.response.emplace(*http, data, end.date);
            trace.response->discardedBodySize = discardedBodySize;
        }
    });
}

void QXRequestRecorder::progress(const QString &id, const NSURLResponsePtr &response,
                                 const std::optional<QByteArray> &data,
                                 std::optional<qsizetype> discardedBodySize)
{
    Q_ASSERT(MainActor::isCurrent());
    const auto *http = dynamic_cast<const NSHTTPURLResponse *>(response.get());
    const qsizetype index = m_requests.indexOf(id);
    if (!http || index < 0 || m_requests[index].duration)
        return;
    change(index, [&](QXTraceList::Cell &cell) {
        cell.trace.response.emplace(*http, data);
        cell.trace.response->discardedBodySize = discardedBodySize;
    });
}

void QXRequestRecorder::setRefresher(const QString &id, std::function<void()> refresher)
{
    Q_ASSERT(MainActor::isCurrent());
    const qsizetype index = m_requests.indexOf(id);
    if (index >= 0 && !m_requests[index].duration)
        m_refreshers[id] = std::move(refresher);
}

bool QXRequestRecorder::refresh(const QString &id)
{
    Q_ASSERT(MainActor::isCurrent());
    const auto refresher = m_refreshers.value(id); // a copy, because the call may end the exchange
    if (refresher) {
        refresher();
        return true;
    }
    std::unique_lock lock(m_sourcesMutex);
    const auto sources = m_sources;
    lock.unlock();
    return std::any_of(sources.cbegin(), sources.cend(), [&](const auto &ask) { return ask(id); });
}

void QXRequestRecorder::addSource(std::function<bool(const QString &)> refresher)
{
    const std::scoped_lock lock(m_sourcesMutex);
    m_sources.append(std::move(refresher));
}

void QXRequestRecorder::clear()
{
    Q_ASSERT(MainActor::isCurrent());
    m_requests = {};
    m_bodies.clear();
    m_looseBodies.clear();
    m_refreshers.clear();
    FreedMemory::note(std::exchange(m_bodyBytes, 0));
    postChange();
}

QList<QXRequestTrace>
QXRequestRecorder::findRequests(const std::function<bool(const QXRequestTrace &)> &predicate) const
{
    QList<QXRequestTrace> found;
    for (const QXRequestTrace &trace : requests()) {
        if (predicate(trace))
            found.append(trace);
    }
    return found;
}

QList<QXRequestTrace> QXRequestRecorder::findRequestsByPath(const QString &path) const
{
    return findRequests([&](const QXRequestTrace &trace) {
        return trace.url && pathExtension(*trace.url).contains(path, Qt::CaseSensitive);
    });
}

QList<QXRequestTrace> QXRequestRecorder::findRequestsByStatusCode(qint64 statusCode) const
{
    return findRequests([&](const QXRequestTrace &trace) {
        return trace.response && trace.response->statusCode == statusCode;
    });
}

QList<QXRequestTrace> QXRequestRecorder::findRequestsByMethod(const QString &method) const
{
    return findRequests([&](const QXRequestTrace &trace) { return trace.method && *trace.method == method; });
}
