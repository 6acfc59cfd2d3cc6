#pragma once

#include <cstddef>
#include <span>
#include <vector>

class QXApiTreeField;

/// The visible nodes of a tree in order, stored as runs of siblings, which are neighbours in memory. So a
/// node with ten million children needs one run when it is expanded. The cost of a change depends on the
/// number of expanded nodes only. Does not own the nodes.
class QXLogTreeRows final
{
public:
    /// Siblings that follow each other without visible nodes between them.
    struct Run
    {
        QXApiTreeField *first;
        size_t count;
    };

    [[nodiscard]] size_t size() const noexcept { return m_runs.empty() ? 0 : m_runs.back().end; }
    /// The node of a row, which must exist.
    [[nodiscard]] QXApiTreeField *at(size_t row) const;
    /// Returns the row of a node that is somewhere before @p row.
    [[nodiscard]] size_t rowBefore(size_t row, const QXApiTreeField *node) const;
    /// Returns the number of rows directly after @p row that are deeper in the tree: the visible
    /// descendants.
    [[nodiscard]] size_t countDescendants(size_t row) const;

    void clear() { m_runs.clear(); }
    /// Inserts nodes before @p row, or at the end if @p row is size().
    void insert(size_t row, std::span<const Run> runs);
    /// Removes @p count rows, starting with @p row; they must exist.
    void remove(size_t row, size_t count);

private:
    /// A run of at least one node, which ends before row @c end.
    struct Stored
    {
        QXApiTreeField *first;
        size_t end;
    };

    [[nodiscard]] size_t start(size_t run) const { return run == 0 ? 0 : m_runs[run - 1].end; }
    [[nodiscard]] size_t runOf(size_t row) const;
    size_t splitBefore(size_t row);
    void joinAt(size_t run);

    std::vector<Stored> m_runs;
};
