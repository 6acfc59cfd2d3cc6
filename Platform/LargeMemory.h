#pragma once

#include "Platform/PlatformGlobal.h"

#include <cstddef>

namespace Quorvix {

/// Memory for what is built at once and is large. The system gives out fresh memory in pages, and giving out
/// a page takes longer than filling it. A large page costs little more than a small one, so that memory in
/// large pages is there up to ten times faster. Any thread.
namespace LargeMemory {

/// A block of this size is a mapping of its own, whatever allocated it.
inline constexpr size_t smallestMapping = size_t(32) << 20;

/// Asks for large pages for a fresh block of memory, most of which is used from its beginning on. Ignores a
/// block that can share its mapping with others: the request would outlive it.
QUORVIX_INTERNAL_EXPORT void requestLargePages(void *block, size_t size) noexcept;

/// A block of fresh memory, in large pages if it is large. What is never used takes no physical memory, apart
/// from the rest of one page.
class QUORVIX_INTERNAL_EXPORT Block
{
public:
    explicit Block(size_t size);
    ~Block();
    Block(Block &&other) noexcept;
    Q_DISABLE_COPY(Block)
    Block &operator=(Block &&) = delete;

    /// Aligned for any type.
    [[nodiscard]] std::byte *data() const noexcept { return m_data; }

private:
    std::byte *m_data = nullptr;
    /// What was mapped; null if the memory is from an allocator.
    void *m_mapping = nullptr;
    size_t m_mappedSize = 0;
};

} // namespace LargeMemory

} // namespace Quorvix
