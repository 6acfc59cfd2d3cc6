#pragma once

#include "Quorvix/QXApiTreeField.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

class QXTaskSteps;

namespace Quorvix {
class JSONValue;
} // namespace Quorvix

/// Owns the nodes of one parsed text and their texts. It lives as long as a shared pointer to one of its
/// nodes exists.
///
/// The children of a node are contiguous in memory. Nodes and texts never move, and they do not refer to the
/// parsed text.
class QXApiTree final : public QXApiTreeField::Owner
{
public:
    /// Copies the value @p root with everything in it, and returns the node for @p root; null if the task is
    /// cancelled. @p steps has the unit of JSONDocument::size().
    static std::shared_ptr<QXApiTreeField> make(const Quorvix::JSONValue &root, QXTaskSteps &steps);

    Q_DISABLE_COPY_MOVE(QXApiTree)
    ~QXApiTree() = default;

private:
    friend class QXApiTreeField;
    class Builder;

    /// Allocates arrays of objects that live as long as the arena. It needs few allocations and leaves
    /// little memory unused.
    template<typename T>
    class Arena
    {
    public:
        T *allocate(size_t count)
        {
            // A large array gets a chunk of its own, so that the rest of the current chunk is not lost.
            if (count > m_chunkSize / 4)
                return m_chunks.emplace_back(new T[count]).get();
            if (count > m_left) {
                m_next = m_chunks.emplace_back(new T[m_chunkSize]).get();
                m_left = m_chunkSize;
                m_chunkSize = std::min(m_chunkSize * 2, largestChunk);
            }
            m_left -= count;
            return std::exchange(m_next, m_next + count);
        }

    private:
        static constexpr size_t largestChunk = 16384;

        // std::make_unique cannot call the private constructor of QXApiTreeField.
        std::vector<std::unique_ptr<T[]>> m_chunks;
        T *m_next = nullptr;
        size_t m_left = 0;
        size_t m_chunkSize = 64;
    };

    QXApiTree() = default;

    Arena<QXApiTreeField> m_nodes;
    Arena<char> m_texts;
    QXApiTreeField m_root;
};
