#include "Quorvix/QXTraceSearch.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace {

/// What it costs to examine a trace with a very short URL, as a number of bytes.
constexpr qsizetype costPerTrace = 64;
/// What it costs to make the text of a trace, at least.
constexpr qsizetype costOfKey = 1000;

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

const QXTraceList::Cell &cellAt(const QXTraceList &traces, qsizetype position)
{
    return *traces.cell(traces.size() - 1 - position);
}

struct Examination
{
    bool isMatch = false;
    /// The number of bytes that were read.
    qsizetype cost = 0;
};

QByteArray searchKey(const QXRequestTrace &trace)
{
    QByteArray key;
    if (trace.url)
        key = trace.url->toEncoded().toLower();
    key += '\0';
    if (trace.method)
        key += trace.method->toLower().toUtf8();
    return key;
}

/// Examines whether the URL, the method or the status code of a trace contains the query.
Examination examined(const QXTraceList::Cell &cell, std::string_view query)
{
    // Searchers that are prepared for a query are slower for the short ones that people type.
    constexpr std::size_t npos = std::string_view::npos;
    qsizetype cost = 0;
    if (cell.searchKey.isNull()) {
        cell.searchKey = searchKey(cell.trace);
        cost = costOfKey + 4 * cell.searchKey.size();
    }
    if (const std::size_t place = view(cell.searchKey).find(query); place != npos)
        return {true, cost + qsizetype(place)};
    cost += cell.searchKey.size();
    if (!cell.trace.response)
        return {false, cost};
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), cell.trace.response->statusCode).ptr;
    return {std::string_view(digits.data(), std::size_t(end - digits.data())).find(query) != npos, cost};
}

} // namespace

qsizetype QXTraceSearch::match(qsizetype index) const
{
    return m_matches[std::size_t(matchCount() - 1 - index)];
}

QByteArray QXTraceSearch::queryFor(const QString &searchText)
{
    return searchText.trimmed().toLower().toUtf8();
}

void QXTraceSearch::begin(const QByteArray &query, qsizetype count)
{
    // A text that contains the longer query also contains the shorter one.
    const bool narrows = isActive() && query.contains(m_query);
    m_query = query;
    if (!narrows)
        return restart(count);
    m_candidates.insert(m_candidates.end(), m_matches.begin(), m_matches.end());
    m_matches.clear();
}

void QXTraceSearch::restart(qsizetype count)
{
    m_unexamined = isActive() ? quint32(count) : 0;
    m_candidates.clear();
    m_matches.clear();
}

QXTraceSearch::Positions QXTraceSearch::examine(const QXTraceList &traces, qsizetype limit)
{
    Positions found;
    while (!isComplete() && limit > 0) {
        quint32 position = 0;
        if (m_candidates.empty()) {
            position = --m_unexamined;
        } else {
            position = m_candidates.back();
            m_candidates.pop_back();
        }
        const Examination examination = examined(cellAt(traces, position), view(m_query));
        if (examination.isMatch)
            found.push_back(position);
        limit -= costPerTrace + examination.cost;
    }
    return found;
}

QXTraceSearch::Positions QXTraceSearch::examineFrom(const QXTraceList &traces, qsizetype first) const
{
    Positions found;
    for (qsizetype position = first; position < traces.size(); ++position) {
        if (examined(cellAt(traces, position), view(m_query)).isMatch)
            found.push_back(quint32(position));
    }
    return found;
}

void QXTraceSearch::addOlder(const Positions &found)
{
    m_matches.insert(m_matches.begin(), found.rbegin(), found.rend());
}

void QXTraceSearch::addNewer(const Positions &found)
{
    m_matches.insert(m_matches.end(), found.begin(), found.end());
}

QXTraceSearch::Change QXTraceSearch::examineChange(const QXTraceList &traces, qsizetype position)
{
    if (position < m_unexamined)
        return {};
    if (!m_candidates.empty() && position <= m_candidates.back()) {
        const auto place = std::lower_bound(m_candidates.begin(), m_candidates.end(), quint32(position));
        if (*place != quint32(position))
            m_candidates.insert(place, quint32(position));
        return {};
    }
    const auto place = std::lower_bound(m_matches.begin(), m_matches.end(), quint32(position));
    const bool isShown = place != m_matches.end() && *place == quint32(position);
    const bool isMatch = examined(cellAt(traces, position), view(m_query)).isMatch;
    const qsizetype newer = m_matches.end() - place;
    if (isShown)
        return {isMatch ? Change::Changed : Change::Removed, newer - 1};
    return {isMatch ? Change::Added : Change::None, newer};
}

void QXTraceSearch::apply(const Change &change, qsizetype position)
{
    if (change.kind == Change::Added)
        m_matches.insert(m_matches.end() - change.index, quint32(position));
    else if (change.kind == Change::Removed)
        m_matches.erase(m_matches.end() - 1 - change.index);
}
