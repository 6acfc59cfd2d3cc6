#include "Quorvix/QXTraceList.h"

#include <algorithm>
#include <utility>

/// An inner node uses `children`; a leaf uses the other fields. A node never changes while another list uses
/// it.
struct QXTraceList::Node final : QSharedData
{
    explicit Node(int height) { reserve(height); }

    /// Copies are made to be changed, often by one more child or cell.
    Node(const Node &other) : QSharedData(other)
    {
        reserve(other.children.empty() ? 0 : 1);
        children.insert(children.end(), other.children.begin(), other.children.end());
        cells.insert(cells.end(), other.cells.begin(), other.cells.end());
        hashes.insert(hashes.end(), other.hashes.begin(), other.hashes.end());
    }
    Node &operator=(const Node &) = delete;
    ~Node() = default;

    void reserve(int height)
    {
        if (height > 0)
            return children.reserve(width);
        cells.reserve(width);
        hashes.reserve(width);
    }

    std::vector<NodePtr> children;
    std::vector<CellPtr> cells;
    /// The hash of each cell's identifier, in one array, so that a search does not have to read the traces.
    std::vector<size_t> hashes;
};

namespace {

/// Makes sure that only one pointer refers to the node. Another thread may just have given up its list: what
/// it has read there must be behind it, so the count is read with acquire semantics.
template<typename Pointer>
void own(Pointer &node)
{
    if (node->ref.loadAcquire() != 1)
        node.detach();
}

/// Whether only this pointer refers to the cell. The order of memory that use_count() guarantees is too weak
/// for changes of the cell after another thread has read it. A copy that is made and destroyed synchronises
/// with the thread that gave up its pointer last.
bool isUnique(const QXTraceList::CellPtr &cell)
{
    if (cell.use_count() != 1)
        return false;
    const QXTraceList::CellPtr copy = cell; // NOLINT(performance-unnecessary-copy-initialization)
    return copy.use_count() == 2;
}

} // namespace

QXTraceList::QXTraceList() noexcept = default;
QXTraceList::QXTraceList(const QXTraceList &other) noexcept = default;
QXTraceList::QXTraceList(QXTraceList &&other) noexcept
    : m_root(std::move(other.m_root)), m_height(std::exchange(other.m_height, 0)),
      m_size(std::exchange(other.m_size, 0))
{
}
QXTraceList::~QXTraceList() = default;

QXTraceList &QXTraceList::operator=(QXTraceList other) noexcept
{
    m_root.swap(other.m_root);
    m_height = other.m_height;
    m_size = other.m_size;
    return *this;
}

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
    if (m_size == capacity()) {
        if (m_root) {
            NodePtr taller(new Node(++m_height));
            taller->children.push_back(std::move(m_root));
            m_root = std::move(taller);
        } else {
            m_root = NodePtr(new Node(0));
        }
    }
    Node &leaf = ownLeaf(m_size++);
    leaf.hashes.push_back(qHash(cell->trace.id));
    leaf.cells.push_back(std::move(cell));
}

void QXTraceList::replace(qsizetype index, CellPtr cell)
{
    Q_ASSERT(index >= 0 && index < m_size);
    const qsizetype position = m_size - 1 - index;
    Node &leaf = ownLeaf(position);
    const auto slot = std::size_t(position & (width - 1));
    leaf.hashes[slot] = qHash(cell->trace.id);
    leaf.cells[slot] = std::move(cell);
}

QXTraceList::Cell &QXTraceList::ownCell(qsizetype index)
{
    Q_ASSERT(index >= 0 && index < m_size);
    const qsizetype position = m_size - 1 - index;
    CellPtr &cell = ownLeaf(position).cells[std::size_t(position & (width - 1))];
    if (!isUnique(cell))
        cell = std::make_shared<Cell>(*cell);
    return const_cast<Cell &>(*cell);
}

QXTraceList::Cell *QXTraceList::uniqueCell(qsizetype index) const
{
    Q_ASSERT(index >= 0 && index < m_size);
    const qsizetype position = m_size - 1 - index;
    const NodePtr *node = &m_root;
    int height = m_height;
    while (height > 0 && (*node)->ref.loadAcquire() == 1) {
        node = &(*node)->children[std::size_t((position >> (bits * height)) & (width - 1))];
        --height;
    }
    if ((*node)->ref.loadAcquire() != 1)
        return nullptr;
    const CellPtr &cell = (*node)->cells[std::size_t(position & (width - 1))];
    return isUnique(cell) ? const_cast<Cell *>(cell.get()) : nullptr;
}

/// The leaf of a position, which may be the next one behind the last. No other list refers to it or to the
/// nodes above it: those that one did are copied from the root down, because a copied node shares its
/// children.
QXTraceList::Node &QXTraceList::ownLeaf(qsizetype position)
{
    NodePtr *node = &m_root;
    for (int height = m_height; height > 0; --height) {
        own(*node);
        auto &children = (*node)->children;
        const auto slot = std::size_t((position >> (bits * height)) & (width - 1));
        if (slot == children.size())
            children.emplace_back(new Node(height - 1));
        node = &children[slot];
    }
    own(*node);
    return **node;
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
