#include "Quorvix/QXLogTreeRows.h"

#include "Quorvix/QXApiTreeField.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t largestBlock = 1024;

template<typename Sequence>
auto iteratorAt(Sequence &sequence, size_t offset)
{
    return sequence.begin() + std::ptrdiff_t(offset);
}

} // namespace

QXApiTreeField *QXLogTreeRows::at(size_t row) const
{
    const Place place = placeOf(row);
    return m_blocks[place.block][place.offset];
}

size_t QXLogTreeRows::rowBefore(size_t row, const QXApiTreeField *node) const
{
    const Place place = placeOf(row);
    size_t start = row - place.offset;
    auto block = iteratorAt(m_blocks, place.block);
    auto end = iteratorAt(*block, place.offset);
    for (;;) {
        const auto found = std::find(block->begin(), end, node);
        if (found != end)
            return start + size_t(found - block->begin());
        Q_ASSERT(start > 0);
        --block;
        start -= block->size();
        end = block->end();
    }
}

size_t QXLogTreeRows::countDescendants(size_t row) const
{
    const int depth = at(row)->depth();
    const auto isNotDescendant = [depth](const QXApiTreeField *node) {
        return node->depth() <= depth;
    };
    const Place place = placeOf(row + 1);
    size_t count = 0;
    auto block = iteratorAt(m_blocks, place.block);
    auto start = iteratorAt(*block, place.offset);
    for (;;) {
        const auto end = std::find_if(start, block->end(), isNotDescendant);
        count += size_t(end - start);
        if (end != block->end() || ++block == m_blocks.end())
            return count;
        start = block->begin();
    }
}

void QXLogTreeRows::clear()
{
    m_blocks.clear();
    m_size = 0;
}

/// The end of a block counts as the beginning of the next one; only the last block has an end position.
QXLogTreeRows::Place QXLogTreeRows::placeOf(size_t row) const
{
    size_t block = 0;
    while (block + 1 < m_blocks.size() && row >= m_blocks[block].size())
        row -= m_blocks[block++].size();
    return {block, row};
}

void QXLogTreeRows::insert(size_t row, std::span<QXApiTreeField *const> nodes)
{
    if (nodes.empty())
        return;
    if (m_blocks.empty())
        m_blocks.emplace_back();
    const Place place = placeOf(row);
    Block &block = m_blocks[place.block];
    if (block.size() + nodes.size() <= largestBlock)
        block.insert(iteratorAt(block, place.offset), nodes.begin(), nodes.end());
    else
        insertBlocks(place, nodes);
    m_size += nodes.size();
}

/// Splits the block at @p place and inserts the nodes between the two parts as new blocks.
void QXLogTreeRows::insertBlocks(Place place, std::span<QXApiTreeField *const> nodes)
{
    std::vector<Block> added;
    added.reserve(nodes.size() / largestBlock + 2);
    for (; !nodes.empty(); nodes = nodes.subspan(added.back().size())) {
        const auto run = nodes.first(std::min(nodes.size(), largestBlock));
        added.emplace_back(run.begin(), run.end());
    }
    Block &block = m_blocks[place.block];
    added.emplace_back(iteratorAt(block, place.offset), block.end());
    block.resize(place.offset);

    const size_t last = place.block + added.size();
    m_blocks.insert(iteratorAt(m_blocks, place.block + 1), std::move_iterator(added.begin()),
                    std::move_iterator(added.end()));
    mergeAround(last);
    mergeAround(place.block);
}

void QXLogTreeRows::remove(size_t row, size_t count)
{
    if (count == 0)
        return;
    m_size -= count;
    const Place place = placeOf(row);
    size_t first = place.block;
    if (place.offset > 0) {
        Block &block = m_blocks[first];
        const size_t taken = std::min(count, block.size() - place.offset);
        block.erase(iteratorAt(block, place.offset), iteratorAt(block, place.offset + taken));
        count -= taken;
        ++first;
    }
    size_t last = first;
    for (; last < m_blocks.size() && count >= m_blocks[last].size(); ++last)
        count -= m_blocks[last].size();
    if (count > 0)
        m_blocks[last].erase(m_blocks[last].begin(), iteratorAt(m_blocks[last], count));
    m_blocks.erase(iteratorAt(m_blocks, first), iteratorAt(m_blocks, last));
    mergeAround(first);
    mergeAround(place.block);
}

/// Joins a block with a neighbour if both fit into one block, so that there are never many small blocks.
void QXLogTreeRows::mergeAround(size_t block)
{
    const auto fits = [this](size_t left) {
        return left + 1 < m_blocks.size() &&
               m_blocks[left].size() + m_blocks[left + 1].size() <= largestBlock;
    };
    const auto join = [this](size_t left) {
        m_blocks[left].insert(m_blocks[left].end(), m_blocks[left + 1].cbegin(), m_blocks[left + 1].cend());
        m_blocks.erase(iteratorAt(m_blocks, left + 1));
    };
    if (fits(block))
        join(block);
    if (block > 0 && fits(block - 1))
        join(block - 1);
}
