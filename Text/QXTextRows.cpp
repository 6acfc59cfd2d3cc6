#include "Text/QXTextRows.h"

#include "Text/QXTextCell.h"

#include "Platform/CodePoint.h"
#include "Platform/QXTaskProgress.h"

#include <QtCore/QChar>

#include <algorithm>

namespace {

/// Limits the units of a row: a row of many marks without width would take too long to lay out.
constexpr qsizetype unitsPerColumn = 8;

/// Whether the unit is one column wide and independent of the characters beside it.
constexpr bool isPlain(char16_t unit)
{
    return char16_t(unit - 0x20) < 0x5F;
}

/// The length of the longest prefix of plain units.
qsizetype plainLength(const char16_t *text, qsizetype length)
{
    constexpr qsizetype block = 16;
    qsizetype i = 0;
    for (; i + block <= length; i += block) {
        // The loop has no early exit, so that the compiler can vectorise it.
        unsigned short plain = 1;
        for (qsizetype k = 0; k < block; ++k)
            plain &= static_cast<unsigned short>(isPlain(text[i + k]));
        if (!plain)
            break;
    }
    while (i < length && isPlain(text[i]))
        ++i;
    return i;
}

/// The end of a row, and whether a line ends there.
struct RowEnd
{
    qsizetype next = 0;
    bool endsLine = false;
};

class RowBreaker
{
public:
    RowBreaker(QStringView text, int columns) : m_text(text.utf16()), m_size(text.size()), m_columns(columns)
    {
    }

    /// The end of the row that begins at @p start. It depends on no text before @p start, and on no row but
    /// this one and the next.
    [[nodiscard]] RowEnd rowFrom(qsizetype start) const;

private:
    const char16_t *m_text;
    qsizetype m_size;
    int m_columns;
};

RowEnd RowBreaker::rowFrom(qsizetype start) const
{
    qsizetype position = start + plainLength(m_text + start, qMin<qsizetype>(m_columns, m_size - start));
    int column = int(position - start);
    qsizetype base = qMax(start, position - 1);
    char32_t previous = position > start ? m_text[base] : 0;
    const qsizetype limit = start + unitsPerColumn * m_columns;
    while (position < m_size) {
        const char32_t character = Quorvix::codePointAt({m_text, m_size}, position);
        if (character == U'\n')
            return {position + 1, true};
        if (character == U'\r')
            return {position + (position + 1 < m_size && m_text[position + 1] == u'\n' ? 2 : 1), true};
        const QXTextCell cell = QXTextCell::of(character, previous, column);
        if (!cell.joins)
            base = position;
        if (position > start && (column + cell.columns > m_columns || position >= limit))
            return {base > start ? base : position, false};
        column += cell.columns;
        previous = character;
        position += Quorvix::unitCount(character);
    }
    return {m_size, false};
}

/// Replaces the elements between @p first and @p last by @p fresh; moves the following elements at most once.
void replaceRange(std::vector<quint32> &starts, std::vector<quint32>::iterator first,
                  std::vector<quint32>::iterator last, const std::vector<quint32> &fresh)
{
    const auto common = std::min(last - first, std::ptrdiff_t(fresh.size()));
    const auto gap = std::copy_n(fresh.begin(), common, first);
    if (gap != last)
        starts.erase(gap, last);
    else
        starts.insert(gap, fresh.begin() + common, fresh.end());
}

} // namespace

void QXTextRows::breakText(QStringView text, int columns, const QXTaskProgress *progress)
{
    m_length = text.size();
    m_columns = qMax(1, columns);
    m_rowLength = 0;
    m_starts.assign(1, 0);
    const RowBreaker breaker(text, m_columns);
    for (qsizetype start = 0; start < m_length && !(progress && progress->isCancelled());) {
        const RowEnd end = breaker.rowFrom(start);
        ++m_brokenCount;
        if (end.next < m_length || end.endsLine)
            m_starts.push_back(quint32(end.next));
        start = end.next;
    }
}

void QXTextRows::breakEvenly(qsizetype length, qsizetype rowLength)
{
    m_length = length;
    m_rowLength = qMax<qsizetype>(1, rowLength);
    m_starts.clear();
}

void QXTextRows::follow(QStringView text, qsizetype position, qsizetype removed, qsizetype added)
{
    const qsizetype shift = added - removed;
    // The first characters of the edit may join the previous row.
    const int first = qMax(0, rowAt(position) - 1);
    const auto edited = m_starts.begin() + first;
    auto kept = std::lower_bound(edited + 1, m_starts.end(), quint32(position + removed));
    m_length = text.size();

    std::vector<quint32> fresh;
    bool isInStep = false;
    const RowBreaker breaker(text, m_columns);
    for (qsizetype start = *edited; start < m_length && !isInStep;) {
        const RowEnd end = breaker.rowFrom(start);
        ++m_brokenCount;
        start = end.next;
        if (start == m_length && !end.endsLine)
            break;
        while (kept != m_starts.end() && *kept + shift < start)
            ++kept;
        isInStep = kept != m_starts.end() && *kept + shift == start;
        if (!isInStep)
            fresh.push_back(quint32(start));
    }
    if (!isInStep)
        kept = m_starts.end();
    std::for_each(kept, m_starts.end(), [=](quint32 &start) { start = quint32(start + shift); });
    replaceRange(m_starts, edited + 1, kept, fresh);
}

int QXTextRows::count() const
{
    if (m_rowLength == 0)
        return int(m_starts.size());
    return int(qMax<qsizetype>(1, (m_length + m_rowLength - 1) / m_rowLength));
}

qsizetype QXTextRows::start(int row) const
{
    return m_rowLength == 0 ? qsizetype(m_starts[size_t(row)]) : row * m_rowLength;
}

qsizetype QXTextRows::end(int row) const
{
    return row + 1 < count() ? start(row + 1) : m_length;
}

int QXTextRows::rowAt(qsizetype position) const
{
    if (m_rowLength > 0)
        return int(std::clamp<qsizetype>(position / m_rowLength, 0, count() - 1));
    const auto after =
        std::upper_bound(m_starts.begin(), m_starts.end(), quint32(qMax<qsizetype>(0, position)));
    return int(after - m_starts.begin()) - 1;
}
