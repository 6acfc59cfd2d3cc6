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

qsizetype bodyBytes(const QXRequestTrace &trace)
{
    const auto &response = trace.response;
    return (trace.body ? trace.body->size() : 0) + (response && response->body ? response->body->size() : 0);
}

void postChange()
{
    NSNotificationCenter::defaultCenter().post(QuorvixRequestsChanged);
}

} // namespace

QXRequestRecorder &QXRequestRecorder::shared()
{
    static auto *const recorder = new QXRequestRecorder;
    return *recorder;
}

void QXRequestRecorder::record(const QString &id, const URLRequest &request, const QXMoment &start)
{
    Q_ASSERT(MainActor::isCurrent());
    auto cell = makeCell(id, request, start);
    m_bodyBytes += bodyBytes(cell->trace);
    m_requests.prepend(std::move(cell));
    postChange();
}

void QXRequestRecorder::amend(const QString &id, const URLRequest &request)
{
    Q_ASSERT(MainActor::isCurrent());
    const qsizetype index = m_requests.indexOf(id);
    if (index < 0)
        return;
    const QXTraceList::CellPtr old = m_requests.cell(index);
    auto cell = makeCell(id, request, {old->trace.date, old->recordedAt});
    cell->trace.response = old->trace.response;
    cell->trace.error = old->trace.error;
    cell->trace.duration = old->trace.duration;
    replace(index, std::move(cell));
}

void QXRequestRecorder::complete(const QString &id, const NSURLResponsePtr &response,
                                 const std::optional<QByteArray> &data, const std::optional<NSError> &error,
                                 const QXMoment &end)
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
    if (const auto *http = dynamic_cast<const NSHTTPURLResponse *>(response.get()))
        trace.response = QXResponseTrace(*http, data);
    replace(index, std::move(cell));
}

void QXRequestRecorder::progress(const QString &id, const NSURLResponsePtr &response,
                                 const std::optional<QByteArray> &data)
{
    Q_ASSERT(MainActor::isCurrent());
    const auto *http = dynamic_cast<const NSHTTPURLResponse *>(response.get());
    const qsizetype index = m_requests.indexOf(id);
    if (!http || index < 0 || m_requests[index].duration)
        return;
    auto cell = std::make_shared<QXTraceList::Cell>(*m_requests.cell(index));
    cell->trace.response = QXResponseTrace(*http, data);
    replace(index, std::move(cell));
}

void QXRequestRecorder::replace(qsizetype index, QXTraceList::CellPtr cell)
{
    m_bodyBytes += bodyBytes(cell->trace) - bodyBytes(m_requests[index]);
    m_requests.replace(index, std::move(cell));
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
    m_refreshers.clear();
    FreedMemory::note(std::exchange(m_bodyBytes, 0));
    postChange();
}

std::shared_ptr<QXTraceList::Cell> QXRequestRecorder::makeCell(const QString &id, const URLRequest &request,
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
