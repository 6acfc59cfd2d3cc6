#include "Quorvix/QXRequestListViewModel.h"

#include "Quorvix/QXArchiveError.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXRequestRowViewModel.h"
#include "Quorvix/QXTemporaryFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QLocale>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <string_view>
#include <variant>

using namespace Quorvix;

namespace {

/// Makes the query of a search text: lower case, without white space at both ends.
QByteArray queryFor(const QString &searchText)
{
    return searchText.trimmed().toLower().toUtf8();
}

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

/// A query that is prepared once for many searches. It is a view of the bytes it is made from.
class Query
{
public:
    explicit Query(const QByteArray &text) : m_text(view(text)), m_searcher(m_text.begin(), m_text.end()) {}

    [[nodiscard]] bool isIn(std::string_view haystack) const
    {
        // The searcher is faster only for a text that is long enough to skip ahead.
        constexpr std::size_t shortest = 2;
        if (m_text.size() < shortest)
            return haystack.find(m_text) != std::string_view::npos;
        return std::search(haystack.begin(), haystack.end(), m_searcher) != haystack.end();
    }

private:
    std::string_view m_text;
    std::boyer_moore_horspool_searcher<std::string_view::const_iterator> m_searcher;
};

/// Whether the URL, the method or the status code of a trace contains the query.
bool matches(const QXTraceList::Cell &cell, const Query &query)
{
    if (query.isIn(view(cell.searchKey)))
        return true;
    if (!cell.trace.response)
        return false;
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), cell.trace.response->statusCode).ptr;
    return query.isIn({digits.data(), std::size_t(end - digits.data())});
}

/// Converts a position counted from the newest trace to one counted from the oldest, and back.
qsizetype reversedIndex(const QXTraceList &requests, qsizetype index)
{
    return requests.size() - 1 - index;
}

std::vector<quint32> allMatches(const QXTraceList &requests, const Query &query)
{
    std::vector<quint32> found;
    for (qsizetype position = 0; position < requests.size(); ++position) {
        if (matches(*requests.cell(reversedIndex(requests, position)), query))
            found.push_back(quint32(position));
    }
    return found;
}

/// "Quorvix-export-" with the time in seconds since 1970, in the shortest form that keeps the fraction.
QString exportFileName()
{
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    return QStringLiteral("Quorvix-export-%1.har").arg(now.count(), 0, 'f', QLocale::FloatingPointShortest);
}

using ExportOutcome = std::variant<QUrl, QXArchiveError, NSError>;

/// Writes the traces to a new file in the temporary folder.
ExportOutcome exportArchive(const std::vector<const QXRequestTrace *> &traces)
{
    if (traces.empty())
        return QXArchiveError::noEntries;
    auto file = QXTemporaryFile::write(QDir::temp(), exportFileName(), [&](QIODevice &device) {
        return QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces), device);
    });
    if (!file)
        return file.error();
    return std::move(file).value();
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
    return isFiltering() ? int(m_matches.size()) : int(m_requests.size());
}

const QXTraceList::CellPtr &QXRequestListViewModel::cell(int row) const
{
    if (!isFiltering())
        return m_requests.cell(row);
    return m_requests.cell(reversedIndex(m_requests, m_matches[m_matches.size() - 1 - std::size_t(row)]));
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
        return row.title();
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
    return traces;
}

void QXRequestListViewModel::setSearchText(const QString &text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    Q_EMIT _searchTextChanged();

    const QByteArray query = queryFor(text);
    if (query == m_query)
        return;
    beginResetModel();
    if (query.isEmpty()) {
        m_matches = {};
    } else if (isFiltering() && query.contains(m_query)) {
        // A text that contains the longer query also contains the shorter one, so only the current matches
        // can match.
        std::erase_if(m_matches, [&, prepared = Query(query)](quint32 position) {
            return !matches(*m_requests.cell(reversedIndex(m_requests, position)), prepared);
        });
    } else {
        m_matches = allMatches(m_requests, Query(query));
    }
    m_query = query;
    endResetModel();
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
    m_matches = isFiltering() ? allMatches(m_requests, Query(m_query)) : std::vector<quint32>();
    endResetModel();
}

void QXRequestListViewModel::extendTo(const QXTraceList &requests)
{
    std::vector<qsizetype> changed;
    m_requests.visitDifferences(requests, [&](qsizetype position) { changed.push_back(position); });
    const qsizetype known = m_requests.size();
    if (isFiltering()) {
        m_requests = requests;
        for (const qsizetype position : changed)
            updateMatch(position);
        const Query query(m_query);
        std::vector<quint32> added;
        for (qsizetype position = known; position < requests.size(); ++position) {
            if (matches(*requests.cell(reversedIndex(requests, position)), query))
                added.push_back(quint32(position));
        }
        if (added.empty())
            return;
        beginInsertRows({}, 0, int(added.size()) - 1);
        m_matches.insert(m_matches.end(), added.begin(), added.end());
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
    const auto place = std::lower_bound(m_matches.begin(), m_matches.end(), quint32(position));
    const bool shown = place != m_matches.end() && *place == quint32(position);
    const bool matching = matches(*m_requests.cell(reversedIndex(m_requests, position)), Query(m_query));
    const int after = int(m_matches.end() - place);
    if (shown && matching) {
        Q_EMIT dataChanged(index(after - 1), index(after - 1));
    } else if (matching) {
        beginInsertRows({}, after, after);
        m_matches.insert(place, quint32(position));
        endInsertRows();
    } else if (shown) {
        beginRemoveRows({}, after - 1, after - 1);
        m_matches.erase(place);
        endRemoveRows();
    }
}

void QXRequestListViewModel::exportAll()
{
    const ExportOutcome outcome = exportArchive(filteredRequests());
    if (std::holds_alternative<QXArchiveError>(outcome))
        return presentAlert(QCoreApplication::translate("Quorvix", "No network requests to export."));
    if (const auto *error = std::get_if<NSError>(&outcome))
        return presentAlert(QXArchiveWriter::failureMessage(*error));
    presentShareItem(QXShareItem(std::get<QUrl>(outcome)));
}

QXRequestDetailsViewModel *QXRequestListViewModel::makeDetails(int row) const
{
    return row >= 0 && row < rowCount() ? new QXRequestDetailsViewModel(trace(row)) : nullptr;
}

void QXRequestListViewModel::clear()
{
    QXRequestRecorder::shared().clear();
}
