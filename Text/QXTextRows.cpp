#include "Text/QXTextRows.h"

#include "Text/QXTextCell.h"

#include "Platform/CodePoint.h"
#include "Platform/QXTaskProgress.h"

#include <QtCore/QChar>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace {

/// Limits the units of a row: a row of many marks without width would take too long to lay out.
constexpr qsizetype unitsPerColumn = 8;

/// Whether the unit is one column wide and independent of the characters beside it.
template<typename Unit>
constexpr bool isPlain(Unit unit)
{
    return Unit(unit - 0x20) < 0x5F;
}

/// How many of the units in a word come before the first one that is not plain.
template<typename Unit>
int plainUnits(quint64 word)
{
    constexpr int bits = 8 * sizeof(Unit);
    constexpr quint64 ones = ~quint64(0) / std::numeric_limits<Unit>::max();
    constexpr quint64 tops = ones << (bits - 1);
    constexpr quint64 belowTop = (quint64(1) << (bits - 1)) - 0x7F;
    // Sets the top bit of each unit that is not plain. A carry or a borrow reaches only units behind such a
    // unit.
    const quint64 others = ((word - ones * 0x20) | (word + ones * belowTop) | word) & tops;
    return std::countr_zero(others) / bits;
}

/// The length of the longest prefix of plain units.
template<typename Unit>
qsizetype plainLength(const Unit *text, qsizetype length)
{
    constexpr int unitsPerWord = sizeof(quint64) / sizeof(Unit);
    qsizetype i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        for (; i + unitsPerWord <= length; i += unitsPerWord) {
            quint64 word = 0;
            std::memcpy(&word, text + i, sizeof word);
            if (const int plain = plainUnits<Unit>(word); plain < unitsPerWord)
                return i + plain;
        }
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

const char16_t *unitsOf(QStringView text)
{
    return text.utf16();
}

const uchar *unitsOf(QLatin1StringView text)
{
    return reinterpret_cast<const uchar *>(text.data());
}

char32_t codePointAt(const char16_t *text, qsizetype size, qsizetype at)
{
    return Quorvix::codePointAt({text, size}, at);
}

char32_t codePointAt(const uchar *text, qsizetype, qsizetype at)
{
    return text[at];
}

template<typename Unit>
class RowBreaker
{
public:
    RowBreaker(const Unit *text, qsizetype size, int columns) : m_text(text), m_size(size), m_columns(columns)
    {
    }

    /// The end of the row that begins at @p start. It depends on no text before @p start, and on no row but
    /// this one and the next.
    [[nodiscard]] RowEnd rowFrom(qsizetype start) const;

private:
    const Unit *m_text;
    qsizetype m_size;
    int m_columns;
};

template<typename Unit>
RowEnd RowBreaker<Unit>::rowFrom(qsizetype start) const
{
    qsizetype position = start + plainLength(m_text + start, qMin<qsizetype>(m_columns, m_size - start));
    int column = int(position - start);
    qsizetype base = qMax(start, position - 1);
    char32_t previous = position > start ? m_text[base] : 0;
    const qsizetype limit = start + unitsPerColumn * m_columns;
    if (column == m_columns && position < m_size && isPlain(m_text[position]))
        return {position, false};
    while (position < m_size) {
        const char32_t character = codePointAt(m_text, m_size, position);
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

/// Assumes that the rows to come are as long as those before, which are this part of the text: to get the
/// memory of an array that doubles several times takes longer than to break the rows.
size_t nextCapacity(size_t size, double part)
{
    constexpr size_t fewest = 4096;
    const size_t doubled = std::max(2 * size, fewest);
    return doubled == fewest ? fewest : std::max(doubled, size_t(1.1 * double(size) / part));
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

template<typename View>
void QXTextRows::breakView(View text, int columns, const QXTaskProgress *progress)
{
    m_length = text.size();
    m_columns = qMax(1, columns);
    m_rowLength = 0;
    m_starts.assign(1, 0);
    const RowBreaker breaker(unitsOf(text), m_length, m_columns);
    for (qsizetype start = 0; start < m_length && !(progress && progress->isCancelled());) {
        const RowEnd end = breaker.rowFrom(start);
        ++m_brokenCount;
        if (m_starts.size() == m_starts.capacity())
            m_starts.reserve(nextCapacity(m_starts.size(), double(start) / double(m_length)));
        if (end.next < m_length || end.endsLine)
            m_starts.push_back(quint32(end.next));
        start = end.next;
    }
}

void QXTextRows::breakText(QStringView text, int columns, const QXTaskProgress *progress)
{
    breakView(text, columns, progress);
}

void QXTextRows::breakText(QLatin1StringView text, int columns, const QXTaskProgress *progress)
{
    breakView(text, columns, progress);
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
    const RowBreaker breaker(unitsOf(text), m_length, m_columns);
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
