#pragma once

#include "Quorvix/QXApiTreeField.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace Quorvix {
class JSONValue;
} // namespace Quorvix

/// The nodes of one parsed text, and their texts. Lives as long as anybody holds one of the nodes.
///
/// The children of a node lie side by side, nothing that was handed out moves, and nothing refers to the text
/// that was parsed.
class QXApiTree final : public QXApiTreeField::Owner
{
public:
    /// Copies what stands under @p root, and returns the node that stands for it.
    static std::shared_ptr<QXApiTreeField> make(const Quorvix::JSONValue &root);

    Q_DISABLE_COPY_MOVE(QXApiTree)
    ~QXApiTree() = default;

private:
    friend class QXApiTreeField;
    class Builder;

    /// Hands out runs of objects that live as long as it does. Few allocations, and little left unused.
    template<typename T>
    class Arena
    {
    public:
        T *take(size_t count)
        {
            // A large run gets a chunk of its own, so that the rest of the current one is not lost.
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

        // The nodes can only be made by those that know them: no std::make_unique here.
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
