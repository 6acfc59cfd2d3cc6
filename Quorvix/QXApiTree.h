#pragma once

#include "Quorvix/QXApiTreeField.h"

#include "Platform/LargeMemory.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

class QXTaskSteps;

namespace Quorvix {
class JSONDocument;
} // namespace Quorvix

/// Owns the nodes of one parsed text, and the part of the parsed data that has their texts. It lives as long
/// as a shared pointer to one of its nodes exists, and may end in any thread.
///
/// The children of a node are contiguous in memory, and nodes never move. Freeing a tree of ten million nodes
/// returns about 500 MB to the system, which takes some 30 to 90 ms. A thread that must not wait that long
/// leaves the last pointer to another thread.
class QXApiTree final : public QXApiTreeField::Owner
{
public:
    /// Makes a tree of all values of a document, and returns its root; null if the task is cancelled. @p
    /// steps has the unit of JSONDocument::size(). A document without other copies gives up its values early.
    static std::shared_ptr<QXApiTreeField> make(Quorvix::JSONDocument document, QXTaskSteps steps);

    Q_DISABLE_COPY_MOVE(QXApiTree)
    ~QXApiTree() = default;

private:
    friend class QXApiTreeField;
    class Builder;

    /// Memory for arrays of nodes, which lives as long as the arena. It needs few allocations and leaves
    /// little memory unused.
    class Arena
    {
    public:
        /// There will be @p certain nodes or more. Later chunks are an eighth of the first one.
        explicit Arena(size_t certain) : m_chunkSize(std::max(certain / 8, smallestChunk))
        {
            m_chunks.emplace_back(certain * sizeof(QXApiTreeField));
            m_next = reinterpret_cast<QXApiTreeField *>(m_chunks.front().data());
            m_left = certain;
        }

        /// The nodes are not constructed, and large arrays take no physical memory until they are.
        QXApiTreeField *allocate(size_t count);

    private:
        static constexpr size_t smallestChunk = 64;

        std::vector<Quorvix::LargeMemory::Block> m_chunks;
        QXApiTreeField *m_next = nullptr;
        size_t m_left = 0;
        size_t m_chunkSize;
    };

    /// The text has @p certain values or more.
    explicit QXApiTree(size_t certain) : m_nodes(certain) {}

    Arena m_nodes;
    std::shared_ptr<const void> m_texts;
    QXApiTreeField m_root;
};
