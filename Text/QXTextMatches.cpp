#include "Text/QXTextMatches.h"

#include "Platform/QXTaskProgress.h"

#include <QtCore/QStringMatcher>

#include <algorithm>

QXTextMatches::QXTextMatches(QXTextContent content, QString needle)
    : m_content(std::move(content)), m_needle(std::move(needle))
{
}

qsizetype QXTextMatches::visit(const QXTextContent &content, const QString &needle, qsizetype start,
                               qsizetype end, const std::function<void(qsizetype)> &visitor)
{
    const QString text = content.text(start, end - start + needle.size() - 1);
    const QStringMatcher matcher(needle, Qt::CaseInsensitive);
    qsizetype from = 0;
    for (qsizetype at = matcher.indexIn(text); at >= 0 && start + at < end;
         at = matcher.indexIn(text, from)) {
        visitor(start + at);
        from = at + needle.size();
    }
    return qMax(start + from, end);
}

QXTextMatches::Part QXTextMatches::search(qsizetype length, const QXTaskProgress *progress) const
{
    Part part{{}, m_end};
    const qsizetype end = qMin(m_end + length, m_content.length());
    while (part.end < end && !(progress && progress->isCancelled())) {
        // A block ends at a fixed place, so that positionsIn() knows it.
        const qsizetype blockEnd = (part.end / blockLength + 1) * blockLength;
        Part::Block block{-1, 0};
        part.end =
            visit(m_content, m_needle, part.end, qMin(blockEnd, m_content.length()), [&](qsizetype position) {
                if (block.count++ == 0)
                    block.first = position;
            });
        if (block.count > 0)
            part.blocks.push_back(block);
    }
    return part;
}

void QXTextMatches::append(const Part &part)
{
    for (const Part::Block &block : part.blocks) {
        m_counts.push_back(count() + block.count);
        m_firsts.push_back(block.first);
    }
    m_end = part.end;
}

std::vector<qsizetype> QXTextMatches::positionsIn(size_t block) const
{
    const qsizetype first = m_firsts[block];
    const qsizetype end = qMin((first / blockLength + 1) * blockLength, m_content.length());
    std::vector<qsizetype> positions;
    visit(m_content, m_needle, first, end, [&](qsizetype position) { positions.push_back(position); });
    return positions;
}

qsizetype QXTextMatches::position(qsizetype match) const
{
    const auto block = size_t(std::upper_bound(m_counts.begin(), m_counts.end(), match) - m_counts.begin());
    return positionsIn(block)[size_t(match - (block == 0 ? 0 : m_counts[block - 1]))];
}

qsizetype QXTextMatches::matchFrom(qsizetype position) const
{
    const auto behind = std::upper_bound(m_firsts.begin(), m_firsts.end(), position);
    if (behind == m_firsts.begin())
        return 0;
    const auto block = size_t(behind - m_firsts.begin()) - 1;
    const auto positions = positionsIn(block);
    const auto found = std::lower_bound(positions.begin(), positions.end(), position);
    return (block == 0 ? 0 : m_counts[block - 1]) + (found - positions.begin());
}
