#pragma once

#include <cstddef>
#include <span>
#include <vector>

class QXApiTreeField;

/// The nodes of a tree that are on show, in order, in blocks: putting a run in or taking one out costs what
/// the run costs, however many there are around it. Holds none of them.
class QXLogTreeRows final
{
public:
    [[nodiscard]] size_t size() const noexcept { return m_size; }
    /// The node of a row, which must exist.
    [[nodiscard]] QXApiTreeField *at(size_t row) const;
    /// The row of a node that stands somewhere before @p row. Linear, but a comparison is all that a row
    /// costs.
    [[nodiscard]] size_t rowBefore(size_t row, const QXApiTreeField *node) const;
    /// How many rows on from the next one lie deeper in the tree than this one.
    [[nodiscard]] size_t countBelow(size_t row) const;

    void clear();
    /// Puts nodes in before @p row, or at the end when it is size().
    void insert(size_t row, std::span<QXApiTreeField *const> nodes);
    /// Takes out @p count rows from @p row on; they must exist.
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

    /// None is empty, and none would fit into one with the next.
    std::vector<Block> m_blocks;
    size_t m_size = 0;
};
