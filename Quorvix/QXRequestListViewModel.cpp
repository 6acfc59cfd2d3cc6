#include "Quorvix/QXRequestListViewModel.h"

#include "Quorvix/QXArchiveError.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXRequestRowViewModel.h"
#include "Quorvix/QXTemporaryFile.h"

#include "Platform/ShortText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <QtCore/QTimerEvent>

#include <limits>
#include <variant>

using namespace Quorvix;

namespace {

/// How many bytes of URLs are searched in one turn of the event loop, which takes about a frame. Only
/// extremely long URLs need more than one turn.
constexpr qsizetype bytesPerTurn = 16'777'216;

/// Converts a position counted from the newest trace to one counted from the oldest, and back.
qsizetype reversedIndex(const QXTraceList &requests, qsizetype index)
{
    return requests.size() - 1 - index;
}

/// "Quorvix-export-" with the time in seconds since 1970, in the shortest form that keeps the fraction.
QString exportFileName()
{
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    return QStringLiteral("Quorvix-export-%1.har").arg(now.count(), 0, 'f', QLocale::FloatingPointShortest);
}

using ExportOutcome = std::variant<QUrl, QXArchiveError, NSError>;

/// Writes the traces to a new file in the temporary folder.
ExportOutcome exportArchive(const std::vector<const QXRequestTrace *> &traces, QXTaskProgress *progress)
{
    if (traces.empty())
        return QXArchiveError::noEntries;
    const auto source = [next = QXArchiveWriter::sourceOf(traces), done = 0, progress,
                         count = qsizetype(traces.size())]() mutable {
        if (progress)
            progress->report(done++, count);
        return next();
    };
    auto file = QXTemporaryFile::write(exportFileName(), [&](QIODevice &device) {
        return QXArchiveWriter::archive(source, device, progress);
    });
    if (!file)
        return file.error();
    return std::move(file).value();
}

/// About how many bytes are written for the traces.
qsizetype archiveSize(const std::vector<const QXRequestTrace *> &traces)
{
    constexpr qsizetype entrySize = 1000;
    qsizetype size = 0;
    for (const QXRequestTrace *trace : traces) {
        size += entrySize + (trace->body ? trace->body->size() : 0);
        if (trace->response && trace->response->body)
            size += trace->response->body->size();
    }
    return size;
}

} // namespace

QXRequestListViewModel::QXRequestListViewModel(QObject *parent)
    : QXPresentingModel(parent), m_requests(QXRequestRecorder::shared().requests()),
      m_observer(NSNotificationCenter::defaultCenter().addObserver(QuorvixRequestsChanged,
                                                                   [this] { scheduleRefresh(); }))
{
}

int QXRequestListViewModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_search.isActive() ? int(m_search.matchCount()) : int(m_requests.size());
}

const QXTraceList::CellPtr &QXRequestListViewModel::cell(int row) const
{
    return m_requests.cell(m_search.isActive() ? reversedIndex(m_requests, m_search.match(row)) : row);
}

QVariant QXRequestListViewModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QXRequestTrace &request = trace(index.row());
    const QXRequestRowViewModel row{request};
    switch (role) {
    case IdRole:
        return request.id;
    case Qt::DisplayRole:
    case TitleRole:
        return ShortText::ends(row.title()); // the row elides it in the middle
    case StatusTextRole:
        return row.statusText();
    case StatusColorRole:
        return row.statusColor();
    case HasErrorRole:
        return request.error.has_value();
    case TintColorRole:
        return row.backgroundColor().color;
    case TintOpacityRole:
        return row.backgroundColor().opacity;
    default:
        return {};
    }
}

QHash<int, QByteArray> QXRequestListViewModel::roleNames() const
{
    return {{IdRole, "requestId"},           {TitleRole, "title"},
            {StatusTextRole, "statusText"},  {StatusColorRole, "statusColor"},
            {HasErrorRole, "hasError"},      {TintColorRole, "tintColor"},
            {TintOpacityRole, "tintOpacity"}};
}

std::vector<const QXRequestTrace *> QXRequestListViewModel::filteredRequests() const
{
    std::vector<const QXRequestTrace *> traces;
    traces.reserve(std::size_t(rowCount()));
    for (int row = 0; row < rowCount(); ++row)
        traces.push_back(&trace(row));
    QXTraceSearch rest = m_search;
    for (const quint32 position : rest.examine(m_requests, std::numeric_limits<qsizetype>::max()))
        traces.push_back(&m_requests[reversedIndex(m_requests, position)]);
    return traces;
}

void QXRequestListViewModel::setSearchText(const QString &text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    Q_EMIT _searchTextChanged();

    const QByteArray query = QXTraceSearch::queryFor(text);
    if (query == m_search.query())
        return;
    beginResetModel();
    m_search.begin(query, m_requests.size());
    m_search.addOlder(m_search.examine(m_requests, bytesPerTurn));
    endResetModel();
    continueSearchLater();
}

void QXRequestListViewModel::continueSearchLater()
{
    // A queued call would run in the same turn of the event loop.
    if (m_search.isComplete())
        m_searchTimer.stop();
    else
        m_searchTimer.start(0, this);
}

void QXRequestListViewModel::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_searchTimer.timerId())
        continueSearch();
    else
        QXPresentingModel::timerEvent(event);
}

void QXRequestListViewModel::continueSearch()
{
    const auto found = m_search.examine(m_requests, bytesPerTurn);
    if (!found.empty()) {
        beginInsertRows({}, rowCount(), rowCount() + int(found.size()) - 1);
        m_search.addOlder(found);
        endInsertRows();
    }
    continueSearchLater();
}

void QXRequestListViewModel::scheduleRefresh()
{
    if (std::exchange(m_refreshScheduled, true))
        return;
    QMetaObject::invokeMethod(this, &QXRequestListViewModel::refresh, Qt::QueuedConnection);
}

void QXRequestListViewModel::refresh()
{
    m_refreshScheduled = false;
    const QXTraceList requests = QXRequestRecorder::shared().requests();
    const bool extends = !m_requests.isEmpty() && requests.size() >= m_requests.size() &&
                         m_requests[m_requests.size() - 1] == requests[requests.size() - 1];
    if (extends)
        extendTo(requests);
    else
        resetTo(requests);
}

void QXRequestListViewModel::resetTo(const QXTraceList &requests)
{
    if (m_requests.isEmpty() && requests.isEmpty())
        return;
    beginResetModel();
    m_requests = requests;
    m_search.restart(m_requests.size());
    m_search.addOlder(m_search.examine(m_requests, bytesPerTurn));
    endResetModel();
    continueSearchLater();
}

void QXRequestListViewModel::extendTo(const QXTraceList &requests)
{
    std::vector<qsizetype> changed;
    m_requests.visitDifferences(requests, [&](qsizetype position) { changed.push_back(position); });
    const qsizetype known = m_requests.size();
    if (m_search.isActive()) {
        m_requests = requests;
        for (const qsizetype position : changed)
            updateMatch(position);
        const auto added = m_search.examineFrom(requests, known);
        if (added.empty())
            return;
        beginInsertRows({}, 0, int(added.size()) - 1);
        m_search.addNewer(added);
        endInsertRows();
        return;
    }
    if (requests.size() > known) {
        beginInsertRows({}, 0, int(requests.size() - known) - 1);
        m_requests = requests;
        endInsertRows();
    } else {
        m_requests = requests;
    }
    for (const qsizetype position : changed) {
        const QModelIndex row = index(int(reversedIndex(m_requests, position)));
        Q_EMIT dataChanged(row, row);
    }
}

void QXRequestListViewModel::updateMatch(qsizetype position)
{
    const QXTraceSearch::Change change = m_search.examineChange(m_requests, position);
    const int row = int(change.index);
    switch (change.kind) {
    case QXTraceSearch::Change::None:
        break;
    case QXTraceSearch::Change::Changed:
        Q_EMIT dataChanged(index(row), index(row));
        break;
    case QXTraceSearch::Change::Added:
        beginInsertRows({}, row, row);
        m_search.apply(change, position);
        endInsertRows();
        break;
    case QXTraceSearch::Change::Removed:
        beginRemoveRows({}, row, row);
        m_search.apply(change, position);
        endRemoveRows();
        break;
    }
}

void QXRequestListViewModel::exportAll()
{
    const auto traces = filteredRequests();
    task()->perform(
        archiveSize(traces), QCoreApplication::translate("Quorvix", "Preparing HAR File…"),
        // The list keeps the traces.
        [list = m_requests, traces](QXTaskProgress *progress) { return exportArchive(traces, progress); },
        [this](const ExportOutcome &outcome) {
            if (std::holds_alternative<QXArchiveError>(outcome))
                return presentAlert(QCoreApplication::translate("Quorvix", "No network requests to export."));
            if (const auto *error = std::get_if<NSError>(&outcome))
                return presentAlert(QXArchiveWriter::failureMessage(*error));
            presentShareItem(QXShareItem(std::get<QUrl>(outcome)));
        });
}

QXRequestDetailsViewModel *QXRequestListViewModel::makeDetails(int row) const
{
    return row >= 0 && row < rowCount() ? new QXRequestDetailsViewModel(trace(row)) : nullptr;
}

void QXRequestListViewModel::clear()
{
    QXRequestRecorder::shared().clear();
}
