#include "Quorvix/QXRequestListViewModel.h"

#include "Quorvix/QXArchiveError.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXRequestRowViewModel.h"
#include "Quorvix/QXTemporaryFile.h"

#include "Platform/ShortText.h"
#include "Platform/URLText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <QtCore/QTimerEvent>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <limits>
#include <variant>

using namespace Quorvix;

namespace {

/// How many bytes are searched in one turn of the event loop, which takes a few milliseconds. To make the
/// texts that are searched takes more turns, and so do extremely long URLs.
constexpr qsizetype bytesPerTurn = 16'777'216;

/// How long the changes of the recorder are collected after a refresh. A refresh costs several times what an
/// exchange costs, and a screen shows no more of them than it has frames.
constexpr std::chrono::milliseconds refreshInterval(8);

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

/// The traces to export: those of a search, or else all of the list, which keeps both.
struct ExportedTraces
{
    QXTraceList list;
    std::optional<std::vector<const QXRequestTrace *>> matches;

    [[nodiscard]] qsizetype count() const { return matches ? qsizetype(matches->size()) : list.size(); }
    /// Refers to this object.
    [[nodiscard]] QXArchiveWriter::Source source() const
    {
        return matches ? QXArchiveWriter::sourceOf(*matches) : QXArchiveWriter::sourceOf(list);
    }
};

/// Writes the traces to a new file in the temporary folder.
ExportOutcome exportArchive(const ExportedTraces &traces, QXTaskProgress *progress)
{
    const qsizetype count = traces.count();
    if (count == 0)
        return QXArchiveError::noEntries;
    const auto source = [next = traces.source(), done = qsizetype(0), progress, count]() mutable {
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

/// About how many bytes are written for the traces. Stops at a size that takes long in any case, because it
/// would take long to look at very many traces, too.
qsizetype archiveSize(const ExportedTraces &traces)
{
    constexpr qsizetype entrySize = 1000;
    constexpr qsizetype enough = 8'000'000;
    qsizetype size = 0;
    const auto source = traces.source();
    for (const QXRequestTrace *trace = source(); trace && size < enough; trace = source()) {
        size += entrySize + (trace->body ? trace->body->size() : 0);
        if (trace->response && trace->response->body)
            size += trace->response->body->size();
    }
    return size;
}

} // namespace

QXRequestListViewModel::QXRequestListViewModel(QObject *parent)
    : QXPresentingModel(parent), m_requests(QXRequestRecorder::shared().requests()),
      m_rowCount(int(m_requests.size())), m_observer(NSNotificationCenter::defaultCenter().addObserver(
                                              QuorvixRequestsChanged, [this] { scheduleRefresh(); }))
{
}

int QXRequestListViewModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rowCount;
}

int QXRequestListViewModel::rowCountOf(const QXTraceSearch &search) const
{
    return int(search.isActive() ? search.matchCount() : m_requests.size());
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
    if (!m_search.isActive()) {
        for (const QXRequestTrace &trace : m_requests)
            traces.push_back(&trace);
        return traces;
    }
    QXTraceSearch search = m_search;
    search.examine(m_requests, m_texts, std::numeric_limits<qsizetype>::max());
    for (const qsizetype position : search.matches())
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
    m_needsTexts = true;
    QXTraceSearch search = m_search;
    search.begin(query, m_requests.size());
    search.examine(m_requests, m_texts, bytesPerTurn);
    Q_EMIT searchAboutToChange();
    showSearch(std::move(search));
    continueSearchLater();
}

/// Makes another search the one that is shown.
void QXRequestListViewModel::showSearch(QXTraceSearch search)
{
    const bool isSame = search.isActive() && m_search.isActive() && search.hasSameMatches(m_search);
    const int count = rowCountOf(search);
    if (count < m_rowCount) {
        beginRemoveRows({}, count, m_rowCount - 1);
        m_rowCount = count;
        endRemoveRows();
    }
    m_search = std::move(search);
    if (!isSame && m_rowCount > 0)
        Q_EMIT dataChanged(index(0), index(m_rowCount - 1));
    showMatches();
}

/// Adds the rows at the end that are missing.
void QXRequestListViewModel::showMatches()
{
    const int count = rowCountOf(m_search);
    if (count == m_rowCount)
        return;
    beginInsertRows({}, m_rowCount, count - 1);
    m_rowCount = count;
    endInsertRows();
}

void QXRequestListViewModel::prepareSearch()
{
    m_needsTexts = true;
    continueSearchLater();
}

void QXRequestListViewModel::continueSearchLater()
{
    const bool needsTexts = m_needsTexts && !m_texts.isComplete(m_requests);
    // A queued call would run in the same turn of the event loop.
    if (m_search.isComplete() && !needsTexts)
        m_searchTimer.stop();
    else
        m_searchTimer.start(0, this);
}

void QXRequestListViewModel::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_searchTimer.timerId())
        continueSearch();
    else if (event->timerId() == m_refreshTimer.timerId())
        refresh();
    else
        QXPresentingModel::timerEvent(event);
}

void QXRequestListViewModel::continueSearch()
{
    if (m_search.isComplete()) {
        m_texts.makeDownTo(0, m_requests, bytesPerTurn);
    } else {
        m_search.examine(m_requests, m_texts, bytesPerTurn);
        showMatches();
    }
    continueSearchLater();
}

void QXRequestListViewModel::scheduleRefresh()
{
    if (std::exchange(m_refreshScheduled, true))
        return;
    const auto sinceRefresh = std::chrono::steady_clock::now() - m_refreshedAt;
    if (sinceRefresh >= refreshInterval)
        QMetaObject::invokeMethod(this, &QXRequestListViewModel::refresh, Qt::QueuedConnection);
    else
        m_refreshTimer.start(
            int(std::chrono::ceil<std::chrono::milliseconds>(refreshInterval - sinceRefresh).count()), this);
}

void QXRequestListViewModel::refresh()
{
    m_refreshTimer.stop();
    m_refreshScheduled = false;
    m_refreshedAt = std::chrono::steady_clock::now();
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
    m_texts.clear();
    m_search.restart(m_requests.size());
    m_search.examine(m_requests, m_texts, bytesPerTurn);
    m_rowCount = rowCountOf(m_search);
    endResetModel();
    continueSearchLater();
}

void QXRequestListViewModel::extendTo(const QXTraceList &requests)
{
    const QXTraceList before = m_requests;
    std::vector<qsizetype> changed;
    before.visitDifferences(requests, [&](qsizetype position) { changed.push_back(position); });
    if (!m_texts.isEmpty()) {
        for (const qsizetype position : changed)
            m_texts.update(position, before[reversedIndex(before, position)],
                           requests[reversedIndex(requests, position)]);
        m_texts.makeNewest(requests);
    }
    if (m_search.isActive()) {
        m_requests = requests;
        for (const qsizetype position : changed)
            updateMatch(position);
        const auto added = m_search.examineFrom(before.size(), m_requests, m_texts);
        if (!added.empty())
            beginInsertRows({}, 0, int(added.size()) - 1);
        m_search.addNewer(added, m_requests.size());
        m_rowCount += int(added.size());
        if (!added.empty())
            endInsertRows();
        return;
    }
    const auto added = int(requests.size() - before.size());
    if (added > 0)
        beginInsertRows({}, 0, added - 1);
    m_requests = requests;
    m_rowCount += added;
    if (added > 0)
        endInsertRows();
    for (const qsizetype position : changed) {
        const QModelIndex row = index(int(reversedIndex(m_requests, position)));
        Q_EMIT dataChanged(row, row);
    }
}

void QXRequestListViewModel::updateMatch(qsizetype position)
{
    const QXTraceSearch::Change change = m_search.examineChange(m_texts, position);
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
        ++m_rowCount;
        endInsertRows();
        break;
    case QXTraceSearch::Change::Removed:
        beginRemoveRows({}, row, row);
        m_search.apply(change, position);
        --m_rowCount;
        endRemoveRows();
        break;
    }
}

void QXRequestListViewModel::exportAll()
{
    ExportedTraces traces{m_requests, {}};
    if (m_search.isActive())
        traces.matches = filteredRequests();
    const qsizetype size = archiveSize(traces);
    task()->perform(
        size, QCoreApplication::translate("Quorvix", "Preparing HAR File…"),
        [traces = std::move(traces)](QXTaskProgress *progress) { return exportArchive(traces, progress); },
        [this](const ExportOutcome &outcome) {
            if (std::holds_alternative<QXArchiveError>(outcome))
                return presentAlert(QCoreApplication::translate("Quorvix", "No network requests to export."));
            if (const auto *error = std::get_if<NSError>(&outcome))
                return presentAlert(QXArchiveWriter::failureMessage(*error));
            presentShareItem(
                QXShareItem(std::get<QUrl>(outcome), QCoreApplication::translate("Quorvix", "HAR archive")));
        },
        [](const ExportOutcome &outcome) {
            if (const auto *file = std::get_if<QUrl>(&outcome))
                QXTemporaryFile::remove(*file);
        });
}

QXRequestDetailsViewModel *QXRequestListViewModel::makeDetails(int row) const
{
    return row >= 0 && row < rowCount() ? new QXRequestDetailsViewModel(trace(row)) : nullptr;
}

void QXRequestListViewModel::copyUrl(int row) const
{
    if (row >= 0 && row < m_rowCount && trace(row).url)
        QGuiApplication::clipboard()->setText(absoluteString(*trace(row).url));
}

void QXRequestListViewModel::clear()
{
    QXRequestRecorder::shared().clear();
}
