#pragma once

#include <cstddef>
#include <span>
#include <vector>

class QXApiTreeField;

/// The visible nodes of a tree in order, stored in blocks. The cost of inserting or removing rows depends on
/// their number, not on the number of other rows. Does not own the nodes.
class QXLogTreeRows final
{
public:
    [[nodiscard]] size_t size() const noexcept { return m_size; }
    /// The node of a row, which must exist.
    [[nodiscard]] QXApiTreeField *at(size_t row) const;
    /// Returns the row of a node that is somewhere before @p row. Linear, but each row costs only one
    /// comparison.
    [[nodiscard]] size_t rowBefore(size_t row, const QXApiTreeField *node) const;
    /// Returns the number of rows directly after @p row that are deeper in the tree: the visible
    /// descendants.
    [[nodiscard]] size_t countDescendants(size_t row) const;

    void clear();
    /// Inserts nodes before @p row, or at the end if @p row is size().
    void insert(size_t row, std::span<QXApiTreeField *const> nodes);
    /// Removes @p count rows, starting with @p row; they must exist.
    void remove(size_t row, size_t count);

private:
    using Block = std::vector<QXApiTreeField *>;
    struct Place
    {
        size_t block;
        size_t offset;
    };

    [[nodiscard]] Place placeOf(size_t row) const;
    void insertBlocks(Place place, std::span<QXApiTreeField *const> nodes);
    void mergeAround(size_t block);

    /// No block is empty, and no two neighbours would fit into one block.
    std::vector<Block> m_blocks;
    size_t m_size = 0;
};
