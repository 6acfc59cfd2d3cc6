#include "Quorvix/QXLogTreeRows.h"

#include "Quorvix/QXApiTreeField.h"

#include <algorithm>
#include <functional>

namespace {

template<typename Sequence>
auto iteratorAt(Sequence &sequence, size_t offset)
{
    return sequence.begin() + std::ptrdiff_t(offset);
}

} // namespace

QXApiTreeField *QXLogTreeRows::at(size_t row) const
{
    const size_t run = runOf(row);
    return m_runs[run].first + (row - start(run));
}

size_t QXLogTreeRows::rowBefore(size_t row, const QXApiTreeField *node) const
{
    // Nodes of different runs may belong to different arrays, whose order only std::less knows.
    const std::less<const QXApiTreeField *> isBefore;
    for (size_t run = runOf(row - 1);; --run) {
        const QXApiTreeField *const first = m_runs[run].first;
        const QXApiTreeField *const last = first + (m_runs[run].end - start(run) - 1);
        if (!isBefore(node, first) && !isBefore(last, node))
            return start(run) + size_t(node - first);
        Q_ASSERT(run > 0);
    }
}

size_t QXLogTreeRows::countDescendants(size_t row) const
{
    const int depth = at(row)->depth();
    size_t run = runOf(row);
    if (row + 1 < m_runs[run].end) // a sibling follows
        return 0;
    while (run + 1 < m_runs.size() && m_runs[run + 1].first->depth() > depth)
        ++run;
    return m_runs[run].end - row - 1;
}

/// The run of a row; behind the last one if @p row is size().
size_t QXLogTreeRows::runOf(size_t row) const
{
    const auto isBehind = [](size_t value, const Stored &run) {
        return value < run.end;
    };
    return size_t(std::upper_bound(m_runs.begin(), m_runs.end(), row, isBehind) - m_runs.begin());
}

/// Makes a run begin with @p row. Returns it; behind the last run if @p row is size().
size_t QXLogTreeRows::splitBefore(size_t row)
{
    const size_t run = runOf(row);
    const size_t first = start(run);
    if (row == first)
        return run;
    m_runs.insert(iteratorAt(m_runs, run), {m_runs[run].first, row});
    m_runs[run + 1].first += row - first;
    return run + 1;
}

void QXLogTreeRows::insert(size_t row, std::span<const Run> runs)
{
    const size_t place = splitBefore(row);
    std::vector<Stored> added;
    added.reserve(runs.size());
    size_t end = row;
    for (const Run &run : runs) {
        if (run.count > 0)
            added.push_back({run.first, end += run.count});
    }
    const auto behind =
        m_runs.insert(iteratorAt(m_runs, place), added.begin(), added.end()) + std::ptrdiff_t(added.size());
    std::for_each(behind, m_runs.end(), [count = end - row](Stored &run) { run.end += count; });
    joinAt(place + added.size());
    joinAt(place);
}

void QXLogTreeRows::remove(size_t row, size_t count)
{
    const size_t first = splitBefore(row);
    const size_t last = splitBefore(row + count);
    const auto behind = m_runs.erase(iteratorAt(m_runs, first), iteratorAt(m_runs, last));
    std::for_each(behind, m_runs.end(), [count](Stored &run) { run.end -= count; });
    joinAt(first);
}

/// Joins a run with the one before it if their nodes are siblings that follow each other. Nodes of different
/// parents can be neighbours in memory, too.
void QXLogTreeRows::joinAt(size_t run)
{
    if (run == 0 || run >= m_runs.size())
        return;
    Stored &before = m_runs[run - 1];
    const Stored &joined = m_runs[run];
    if (before.first + (before.end - start(run - 1)) != joined.first ||
        before.first->parent() != joined.first->parent())
        return;
    before.end = joined.end;
    m_runs.erase(iteratorAt(m_runs, run));
}
