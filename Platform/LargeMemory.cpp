#include "Platform/LargeMemory.h"

#include <cstdint>
#include <new>
#include <utility>

#if defined(Q_OS_LINUX)
#include <sys/mman.h>
#endif

namespace Quorvix {

namespace {

/// The usual size of a large page.
constexpr size_t largePage = size_t(2) << 20;
/// In a block of this size, the unused rest of its last page does not count for much.
constexpr size_t smallestBlock = 4 * largePage;

std::byte *aligned(void *memory) noexcept
{
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    return static_cast<std::byte *>(memory) + (largePage - address % largePage) % largePage;
}

#if defined(MADV_HUGEPAGE)
/// For whole pages only, so that nothing around the block is changed.
void advise(void *block, size_t size) noexcept
{
    std::byte *const first = aligned(block);
    std::byte *const end = static_cast<std::byte *>(block) + size;
    // A kernel without large pages refuses, and then there are small ones.
    if (first < end)
        madvise(first, size_t(end - first) / largePage * largePage, MADV_HUGEPAGE);
}
#endif

} // namespace

void LargeMemory::requestLargePages([[maybe_unused]] void *block, [[maybe_unused]] size_t size) noexcept
{
#if defined(MADV_HUGEPAGE)
    if (size >= smallestMapping)
        advise(block, size);
#endif
}

LargeMemory::Block::Block(size_t size)
{
#if defined(MADV_HUGEPAGE)
    if (size >= smallestBlock) {
        m_mappedSize = size + largePage;
        void *const mapping =
            mmap(nullptr, m_mappedSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapping != MAP_FAILED) {
            m_mapping = mapping;
            m_data = aligned(mapping);
            advise(m_data, size);
            return;
        }
    }
#endif
    m_data = static_cast<std::byte *>(::operator new(size));
}

LargeMemory::Block::Block(Block &&other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_mapping(std::exchange(other.m_mapping, nullptr)),
      m_mappedSize(other.m_mappedSize)
{
}

LargeMemory::Block::~Block()
{
#if defined(MADV_HUGEPAGE)
    if (m_mapping) {
        munmap(m_mapping, m_mappedSize);
        return;
    }
#endif
    ::operator delete(m_data);
}

} // namespace Quorvix
