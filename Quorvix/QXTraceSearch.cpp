#include "Quorvix/QXTraceSearch.h"

#include <algorithm>
#include <bit>

namespace {

using Mask = QXTraceTexts::Mask;

constexpr qsizetype blockSize = QXTraceTexts::blockSize;

std::size_t blockOf(qsizetype position)
{
    return std::size_t(position / blockSize);
}

std::size_t blockCount(qsizetype positions)
{
    return blockOf(positions + blockSize - 1);
}

constexpr Mask bitOf(qsizetype position)
{
    return Mask(1) << (position % blockSize);
}

/// The traces of a block that are older than a position in it.
constexpr Mask olderThan(qsizetype position)
{
    return bitOf(position) - 1;
}

} // namespace

qsizetype QXTraceSearch::match(qsizetype index) const
{
    const auto rank = qint32(matchCount() - 1 - index);
    const auto block =
        std::size_t(std::upper_bound(m_ranks.begin(), m_ranks.end(), rank) - m_ranks.begin()) - 1;
    Mask matches = m_matches[block];
    for (qint32 older = m_ranks[block]; older < rank; ++older)
        matches &= matches - 1; // removes the oldest
    return qsizetype(block) * blockSize + std::countr_zero(matches);
}

std::vector<qsizetype> QXTraceSearch::matches() const
{
    std::vector<qsizetype> positions;
    positions.reserve(std::size_t(matchCount()));
    for (std::size_t block = m_matches.size(); block-- > 0;) {
        for (Mask rest = m_matches[block]; rest != 0;) {
            const int slot = int(std::bit_width(rest)) - 1;
            positions.push_back(qsizetype(block) * blockSize + slot);
            rest &= ~bitOf(slot);
        }
    }
    return positions;
}

bool QXTraceSearch::hasSameMatches(const QXTraceSearch &other) const
{
    return m_matches == other.m_matches;
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
    std::vector<Mask> wanted = m_matches;
    wanted.resize(blockCount(count));
    std::fill_n(wanted.begin(), blockOf(m_unexamined), ~Mask(0));
    if (m_unexamined % blockSize != 0)
        wanted[blockOf(m_unexamined)] |= olderThan(m_unexamined);
    restart(std::move(wanted), count);
}

void QXTraceSearch::restart(qsizetype count)
{
    restart(std::vector<Mask>(isActive() ? blockCount(count) : 0, ~Mask(0)), count);
}

void QXTraceSearch::restart(std::vector<Mask> wanted, qsizetype count)
{
    m_unexamined = isActive() ? count : 0;
    m_wanted = std::move(wanted);
    m_matches.assign(m_wanted.size(), 0);
    countFromBlock(0);
}

void QXTraceSearch::countFromBlock(std::size_t block)
{
    m_ranks.resize(m_matches.size() + 1);
    for (; block < m_matches.size(); ++block)
        m_ranks[block + 1] = m_ranks[block] + std::popcount(m_matches[block]);
}

void QXTraceSearch::examine(const QXTraceList &traces, QXTraceTexts &texts, qsizetype limit)
{
    const QXTraceTexts::Query query(texts, {m_query.constData(), std::size_t(m_query.size())});
    while (!isComplete() && limit > 0) {
        const std::size_t block = blockOf(m_unexamined - 1);
        qsizetype first = qsizetype(block) * blockSize;
        Mask wanted = m_wanted[block];
        if (m_unexamined % blockSize != 0)
            wanted &= olderThan(m_unexamined);
        if (wanted != 0) {
            limit -= texts.makeDownTo(first, traces, limit);
            first = std::max(first, texts.begin());
            if (first >= m_unexamined)
                break;
            wanted &= ~olderThan(first);
            m_matches[block] |= texts.find(qsizetype(block), query, wanted);
            limit -= texts.cost(qsizetype(block), wanted);
        }
        m_unexamined = first;
    }
    countFromBlock(0);
}

std::vector<qsizetype> QXTraceSearch::examineFrom(qsizetype first, const QXTraceList &traces,
                                                  QXTraceTexts &texts) const
{
    texts.makeNewest(traces);
    const QXTraceTexts::Query query(texts, {m_query.constData(), std::size_t(m_query.size())});
    std::vector<qsizetype> found;
    for (qsizetype position = first; position < traces.size(); ++position) {
        if (texts.find(qsizetype(blockOf(position)), query, bitOf(position)) != 0)
            found.push_back(position);
    }
    return found;
}

void QXTraceSearch::addNewer(const std::vector<qsizetype> &found, qsizetype count)
{
    const std::size_t firstChanged = m_matches.empty() ? 0 : m_matches.size() - 1;
    m_wanted.resize(blockCount(count));
    m_matches.resize(blockCount(count));
    for (const qsizetype position : found)
        m_matches[blockOf(position)] |= bitOf(position);
    countFromBlock(firstChanged);
}

QXTraceSearch::Change QXTraceSearch::examineChange(const QXTraceTexts &texts, qsizetype position)
{
    const std::size_t block = blockOf(position);
    if (position < m_unexamined) {
        m_wanted[block] |= bitOf(position);
        return {};
    }
    const QXTraceTexts::Query query(texts, {m_query.constData(), std::size_t(m_query.size())});
    const bool isShown = (m_matches[block] & bitOf(position)) != 0;
    const bool isMatch = texts.find(qsizetype(block), query, bitOf(position)) != 0;
    const qsizetype newer = matchCount() - m_ranks[block] -
                            std::popcount(m_matches[block] & (olderThan(position) | bitOf(position)));
    if (isShown)
        return {isMatch ? Change::Changed : Change::Removed, newer};
    return {isMatch ? Change::Added : Change::None, newer};
}

void QXTraceSearch::apply(const Change &change, qsizetype position)
{
    if (change.kind != Change::Added && change.kind != Change::Removed)
        return;
    m_matches[blockOf(position)] ^= bitOf(position);
    countFromBlock(blockOf(position));
}
