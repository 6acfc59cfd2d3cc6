#include "Quorvix/QXTraceList.h"

#include <algorithm>

/// An inner node uses `children`; a leaf uses the other fields. A node never changes while another list uses
/// it.
struct QXTraceList::Node
{
    std::vector<NodePtr> children;
    std::vector<CellPtr> cells;
    /// The hash of each cell's identifier, in one array, so that a search does not have to read the traces.
    std::vector<size_t> hashes;
};

const QXTraceList::CellPtr &QXTraceList::cell(qsizetype index) const
{
    Q_ASSERT(index >= 0 && index < m_size);
    const qsizetype position = m_size - 1 - index;
    const Node *node = m_root.get();
    for (int height = m_height; height > 0; --height)
        node = node->children[std::size_t((position >> (bits * height)) & (width - 1))].get();
    return node->cells[std::size_t(position & (width - 1))];
}

void QXTraceList::prepend(CellPtr cell)
{
    if (m_size == capacity() && m_root) {
        auto taller = std::make_shared<Node>();
        taller->children.push_back(std::move(m_root));
        m_root = std::move(taller);
        ++m_height;
    }
    m_root = withCell(std::move(m_root), m_height, m_size, std::move(cell));
    ++m_size;
}

void QXTraceList::replace(qsizetype index, CellPtr cell)
{
    Q_ASSERT(index >= 0 && index < m_size);
    m_root = withCell(std::move(m_root), m_height, m_size - 1 - index, std::move(cell));
}

QXTraceList::NodePtr QXTraceList::withCell(NodePtr node, int height, qsizetype position, CellPtr &&cell)
{
    // A node that no other list uses can be changed in place.
    if (!node)
        node = std::make_shared<Node>();
    else if (node.use_count() > 1)
        node = std::make_shared<Node>(*node);

    const auto slot = std::size_t((position >> (bits * height)) & (width - 1));
    if (height == 0) {
        const size_t hash = qHash(cell->trace.id);
        if (slot == node->cells.size()) {
            node->cells.push_back(std::move(cell));
            node->hashes.push_back(hash);
        } else {
            node->cells[slot] = std::move(cell);
            node->hashes[slot] = hash;
        }
    } else {
        if (slot == node->children.size())
            node->children.emplace_back();
        node->children[slot] =
            withCell(std::move(node->children[slot]), height - 1, position, std::move(cell));
    }
    return node;
}

qsizetype QXTraceList::indexOf(const QString &id) const
{
    const qsizetype position = m_root ? findInNode(m_root.get(), m_height, qHash(id), id) : -1;
    return position < 0 ? -1 : m_size - 1 - position;
}

qsizetype QXTraceList::findInNode(const Node *node, int height, size_t hash, const QString &id)
{
    if (height == 0) {
        for (std::size_t i = node->hashes.size(); i-- > 0;) {
            if (node->hashes[i] == hash && node->cells[i]->trace.id == id)
                return qsizetype(i);
        }
        return -1;
    }
    for (std::size_t i = node->children.size(); i-- > 0;) {
        const qsizetype position = findInNode(node->children[i].get(), height - 1, hash, id);
        if (position >= 0)
            return (qsizetype(i) << (bits * height)) + position;
    }
    return -1;
}

void QXTraceList::visitDifferences(const QXTraceList &other,
                                   const std::function<void(qsizetype fromOldest)> &visit) const
{
    const qsizetype common = std::min(m_size, other.m_size);
    // The first branch of the taller tree holds the positions of the whole lower tree.
    const Node *left = m_root.get();
    const Node *right = other.m_root.get();
    for (int height = m_height; height > other.m_height && left; --height)
        left = left->children.front().get();
    for (int height = other.m_height; height > m_height && right; --height)
        right = right->children.front().get();
    visitNodes(left, right, std::min(m_height, other.m_height), 0, common, visit);
}

void QXTraceList::visitNodes(const Node *left, const Node *right, int height, qsizetype first, qsizetype end,
                             const std::function<void(qsizetype)> &visit)
{
    if (left == right || !left || !right || first >= end)
        return;
    if (height == 0) {
        const auto count = std::min(std::size_t(end - first), std::size_t(width));
        for (std::size_t i = 0; i < count; ++i) {
            if (left->cells[i] != right->cells[i])
                visit(first + qsizetype(i));
        }
        return;
    }
    const std::size_t branches = std::min(left->children.size(), right->children.size());
    for (std::size_t i = 0; i < branches; ++i) {
        visitNodes(left->children[i].get(), right->children[i].get(), height - 1,
                   first + (qsizetype(i) << (bits * height)), end, visit);
    }
}
