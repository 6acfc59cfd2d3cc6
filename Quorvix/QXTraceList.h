#pragma once

#include "Quorvix/QXRequestTrace.h"

#include <QtCore/QSharedDataPointer>

#include <functional>
#include <iterator>
#include <memory>
#include <vector>

/// The captured exchanges, newest first: a value that is copied in constant time.
///
/// prepend() and replace() share all nodes with older copies, except one short path from the root to a leaf.
/// So their cost does not depend on the length of the list or on the number of copies. Two lists with a
/// common origin are compared only where they do not share nodes. A list may be used by one thread at a time;
/// its copies may be read and destroyed in other threads.
class QUORVIX_CORE_EXPORT QXTraceList
{
public:
    /// A trace and the store's data about it.
    struct Cell
    {
        /// The exchange.
        QXRequestTrace trace;
        /// The time when the exchange was recorded, on a clock that the user cannot change.
        std::chrono::steady_clock::time_point recordedAt;
    };
    /// Cells are shared by the copies of a list.
    using CellPtr = std::shared_ptr<const Cell>;

    /// No traces.
    QXTraceList() noexcept;
    /// Takes constant time.
    QXTraceList(const QXTraceList &other) noexcept;
    /// Leaves @p other empty.
    QXTraceList(QXTraceList &&other) noexcept;
    /// Takes constant time, apart from what is destroyed.
    QXTraceList &operator=(QXTraceList other) noexcept;
    ~QXTraceList();

    /// Visits the traces, newest first. It refers to its list.
    class const_iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = QXRequestTrace;
        using difference_type = std::ptrdiff_t;
        using pointer = const QXRequestTrace *;
        using reference = const QXRequestTrace &;

        const_iterator() = default;
        reference operator*() const { return (*m_list)[m_index]; }
        pointer operator->() const { return &(*m_list)[m_index]; }
        const_iterator &operator++()
        {
            ++m_index;
            return *this;
        }
        const_iterator operator++(int)
        {
            auto before = *this;
            ++m_index;
            return before;
        }
        bool operator==(const const_iterator &) const = default;

    private:
        friend class QXTraceList;
        const_iterator(const QXTraceList *list, qsizetype index) : m_list(list), m_index(index) {}

        const QXTraceList *m_list = nullptr;
        qsizetype m_index = 0;
    };

    /// The number of traces.
    [[nodiscard]] qsizetype size() const noexcept { return m_size; }
    /// Whether there is no trace.
    [[nodiscard]] bool isEmpty() const noexcept { return m_size == 0; }

    /// The trace at a position counted from the newest. @p index must be less than size().
    [[nodiscard]] const QXRequestTrace &operator[](qsizetype index) const & { return cell(index)->trace; }
    /// The trace of a temporary list, which the list may be the last to own: a copy.
    [[nodiscard]] QXRequestTrace operator[](qsizetype index) && { return cell(index)->trace; }
    /// The cell at a position counted from the newest. @p index must be less than size().
    [[nodiscard]] const CellPtr &cell(qsizetype index) const;

    /// The position of the newest trace with this identifier, or -1. A linear scan from the newest.
    [[nodiscard]] qsizetype indexOf(const QString &id) const;

    /// The newest trace.
    [[nodiscard]] const_iterator begin() const { return {this, 0}; }
    /// Behind the oldest trace.
    [[nodiscard]] const_iterator end() const { return {this, m_size}; }

    /// Adds a trace as the newest.
    void prepend(CellPtr cell);
    /// Puts another trace at a position counted from the newest. @p index must be less than size().
    void replace(qsizetype index, CellPtr cell);

    /// Calls @p visit for every position, counted from the oldest, where both lists have a trace but not the
    /// same cell. Positions ascend. The cost grows with the number of differences, not with the length.
    void visitDifferences(const QXTraceList &other,
                          const std::function<void(qsizetype fromOldest)> &visit) const;

private:
    friend class QXRequestRecorder;
    static constexpr int bits = 5;
    static constexpr qsizetype width = qsizetype(1) << bits;

    struct Node;
    using NodePtr = QExplicitlySharedDataPointer<Node>;

    [[nodiscard]] qsizetype capacity() const { return m_root ? width << (bits * m_height) : 0; }
    Node &ownLeaf(qsizetype position);
    /// The cell at a position counted from the newest, to be changed in place. It is a copy if anybody else
    /// refers to the cell, or to a list that has it. The cells of this list were not made as constants.
    [[nodiscard]] Cell &ownCell(qsizetype index);
    /// The same without a copy: null if anybody else refers to it.
    [[nodiscard]] Cell *uniqueCell(qsizetype index) const;
    static qsizetype findInNode(const Node *node, int height, size_t hash, const QString &id);
    static void visitNodes(const Node *left, const Node *right, int height, qsizetype first, qsizetype end,
                           const std::function<void(qsizetype)> &visit);

    /// The root of a tree with a fixed number of children per node. It is indexed by positions counted from
    /// the oldest trace; the leaves hold the cells.
    NodePtr m_root;
    int m_height = 0;
    qsizetype m_size = 0;
};
