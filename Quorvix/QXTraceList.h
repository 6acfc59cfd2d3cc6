#pragma once

#include "Quorvix/QXRequestTrace.h"

#include <functional>
#include <iterator>
#include <memory>
#include <vector>

/// The captured exchanges, newest first: an immutable value that is copied in constant time.
///
/// Adding to the front and replacing one trace make a new list that shares all but a path of a few small
/// nodes with the old one, so both cost the same however long the list is and whoever still holds an older
/// one. Two lists that come from one another are compared along what they do not share.
class QUORVIX_CORE_EXPORT QXTraceList
{
public:
    /// A trace and what the store remembers about it.
    struct Cell
    {
        QXRequestTrace trace;
        /// When the exchange was recorded; durations are not measured on a clock that people can set.
        std::chrono::steady_clock::time_point recordedAt;
        /// The URL and the method in lower case as UTF-8, with a NUL between: what a search looks through.
        QByteArray searchKey;
    };
    using CellPtr = std::shared_ptr<const Cell>;

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

    [[nodiscard]] qsizetype size() const noexcept { return m_size; }
    [[nodiscard]] bool isEmpty() const noexcept { return m_size == 0; }

    /// The trace at a position counted from the newest, which must be below size().
    [[nodiscard]] const QXRequestTrace &operator[](qsizetype index) const { return cell(index)->trace; }
    [[nodiscard]] const CellPtr &cell(qsizetype index) const;

    /// The position of the newest trace with this identifier, or -1. A linear scan from the newest.
    [[nodiscard]] qsizetype indexOf(const QString &id) const;

    [[nodiscard]] const_iterator begin() const { return {this, 0}; }
    [[nodiscard]] const_iterator end() const { return {this, m_size}; }

    void prepend(CellPtr cell);
    void replace(qsizetype index, CellPtr cell);

    /// Calls @p visit for every position, counted from the oldest, at which both lists have a trace but not
    /// the same cell; positions ascend. Cost grows with the number of differences, not with the length.
    void visitDifferences(const QXTraceList &other,
                          const std::function<void(qsizetype fromOldest)> &visit) const;

private:
    static constexpr int bits = 5;
    static constexpr qsizetype width = qsizetype(1) << bits;

    struct Node;
    using NodePtr = std::shared_ptr<Node>;

    [[nodiscard]] qsizetype capacity() const { return m_root ? width << (bits * m_height) : 0; }
    static NodePtr withCell(NodePtr node, int height, qsizetype position, CellPtr &&cell);
    static qsizetype findInNode(const Node *node, int height, size_t hash, const QString &id);
    static void visitNodes(const Node *left, const Node *right, int height, qsizetype first, qsizetype end,
                           const std::function<void(qsizetype)> &visit);

    /// A tree of fixed fan-out over positions counted from the oldest trace; leaves hold cells.
    NodePtr m_root;
    int m_height = 0;
    qsizetype m_size = 0;
};
