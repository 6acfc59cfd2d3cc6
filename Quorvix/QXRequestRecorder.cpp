#include "Quorvix/QXRequestRecorder.h"

#include "Platform/FreedMemory.h"
#include "Platform/MainActor.h"
#include "Platform/NSNotificationCenter.h"

#include <algorithm>

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

qsizetype responseBytes(const QXRequestTrace &trace)
{
    return trace.response ? sizeOf(trace.response->body) : 0;
}

qsizetype bodyBytes(const QXRequestTrace &trace)
{
    return sizeOf(trace.body) + responseBytes(trace);
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
        const QXTraceList::CellPtr &old = m_requests.cell(index);
        const qsizetype size = bodyBytes(old->trace);
        if (size == 0)
            continue;
        const auto cell = std::make_shared<QXTraceList::Cell>(*old);
        admit(cell->trace, position, nullptr);
        if (bodyBytes(cell->trace) == size)
            continue;
        m_bodyBytes += bodyBytes(cell->trace) - size;
        m_requests.replace(index, cell);
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

/// Applies the budget to the bodies of a trace that is about to be stored in place of @p before, which may be
/// null.
void QXRequestRecorder::admit(QXRequestTrace &trace, qsizetype position, const QXRequestTrace *before)
{
    const qsizetype budget = m_bodyBudget.load(std::memory_order_relaxed);
    if (budget == noBudget)
        return;
    const auto admitSide = [&](Side side, qsizetype size, qsizetype former) {
        if (size > budget)
            discard(trace, side);
        else if (size > 0 && former == 0)
            m_bodies.push_back({position, side});
    };
    admitSide(Side::Request, sizeOf(trace.body), before ? sizeOf(before->body) : 0);
    admitSide(Side::Response, responseBytes(trace), before ? responseBytes(*before) : 0);
}

void QXRequestRecorder::removeOldestBodies()
{
    const qsizetype budget = m_bodyBudget.load(std::memory_order_relaxed);
    while (m_bodyBytes > budget && !m_bodies.empty()) {
        const BodyPlace place = m_bodies.front();
        m_bodies.pop_front();
        const qsizetype index = m_requests.size() - 1 - place.position;
        const QXTraceList::CellPtr old = m_requests.cell(index);
        const qsizetype size =
            place.side == Side::Request ? sizeOf(old->trace.body) : responseBytes(old->trace);
        if (size == 0)
            continue;
        const auto cell = std::make_shared<QXTraceList::Cell>(*old);
        discard(cell->trace, place.side);
        m_bodyBytes -= size;
        m_requests.replace(index, cell);
    }
}

void QXRequestRecorder::record(const QString &id, const URLRequest &request, const QXMoment &start)
{
    Q_ASSERT(MainActor::isCurrent());
    CellPtr cell = makeCell(id, request, start);
    admit(cell->trace, m_requests.size(), nullptr);
    m_bodyBytes += bodyBytes(cell->trace);
    m_requests.prepend(std::move(cell));
    removeOldestBodies();
    postChange();
}

void QXRequestRecorder::amend(const QString &id, const URLRequest &request,
                              std::optional<qsizetype> discardedBodySize)
{
    Q_ASSERT(MainActor::isCurrent());
    const qsizetype index = m_requests.indexOf(id);
    if (index < 0)
        return;
    const QXTraceList::CellPtr old = m_requests.cell(index);
    CellPtr cell = makeCell(id, request, {old->trace.date, old->recordedAt});
    cell->trace.discardedBodySize = discardedBodySize;
    cell->trace.response = old->trace.response;
    cell->trace.error = old->trace.error;
    cell->trace.duration = old->trace.duration;
    replace(index, std::move(cell));
}

void QXRequestRecorder::complete(const QString &id, const NSURLResponsePtr &response,
                                 const std::optional<QByteArray> &data, const std::optional<NSError> &error,
                                 const QXMoment &end, std::optional<qsizetype> discardedBodySize)
{
    Q_ASSERT(MainActor::isCurrent());
    const qsizetype index = m_requests.indexOf(id);
    if (index < 0)
        return;

    m_refreshers.remove(id);
    auto cell = std::make_shared<QXTraceList::Cell>(*m_requests.cell(index));
    QXRequestTrace &trace = cell->trace;
    // A preview is no result: an exchange ends alike, whether or not the user looked at it.
    if (!trace.duration)
        trace.response.reset();
    trace.duration = std::chrono::duration<double>(end.steady - cell->recordedAt).count();
    if (error)
        trace.error = QXFailureNote(*error);
    if (const auto *http = dynamic_cast<const NSHTTPURLResponse *>(response.get())) {
        trace.response = QXResponseTrace(*http, data);
        trace.response->discardedBodySize = discardedBodySize;
    }
    replace(index, std::move(cell));
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
    auto cell = std::make_shared<QXTraceList::Cell>(*m_requests.cell(index));
    cell->trace.response = QXResponseTrace(*http, data);
    cell->trace.response->discardedBodySize = discardedBodySize;
    replace(index, std::move(cell));
}

void QXRequestRecorder::replace(qsizetype index, CellPtr cell)
{
    const QXRequestTrace &before = m_requests[index];
    admit(cell->trace, m_requests.size() - 1 - index, &before);
    m_bodyBytes += bodyBytes(cell->trace) - bodyBytes(before);
    m_requests.replace(index, std::move(cell));
    removeOldestBodies();
    postChange();
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
    m_refreshers.clear();
    FreedMemory::note(std::exchange(m_bodyBytes, 0));
    postChange();
}

QXRequestRecorder::CellPtr QXRequestRecorder::makeCell(const QString &id, const URLRequest &request,
                                                       const QXMoment &start)
{
    QXRequestTrace trace(id, request);
    trace.date = start.date;
    return std::make_shared<QXTraceList::Cell>(QXTraceList::Cell{std::move(trace), start.steady, {}});
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
