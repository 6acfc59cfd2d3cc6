#pragma once

#include "Platform/LargeMemory.h"

#include <QtCore/QtGlobal>

#include <algorithm>

namespace Quorvix {

/// Room for long texts that are written once, from their beginning to their end.
namespace LargeText {

/// Less is not worth a mapping of its own.
inline constexpr qsizetype smallestRoom = qsizetype(4) << 20;

/// Makes room for so many units in a QString or a QByteArray. If that is much memory, it comes in large
/// pages, and more than was asked for is reserved: what is never written takes none, and squeeze() gives it
/// back.
template<typename Text>
void reserve(Text &text, qsizetype units)
{
    constexpr auto unitSize = qsizetype(sizeof *text.data());
#if defined(Q_OS_LINUX)
    // Newer kernels put a mapping of whole large pages where a large page begins. The allocator needs a few
    // bytes of it.
    constexpr qsizetype largePage = qsizetype(2) << 20;
    constexpr qsizetype overhead = 128;
    if (units * unitSize >= smallestRoom) {
        const qsizetype size = std::max(units * unitSize, qsizetype(LargeMemory::smallestMapping)) + overhead;
        units = ((size + largePage - 1) / largePage * largePage - overhead) / unitSize;
    }
#endif
    text.reserve(units);
    LargeMemory::requestLargePages(text.data(), size_t(text.capacity() * unitSize));
}

} // namespace LargeText

} // namespace Quorvix
