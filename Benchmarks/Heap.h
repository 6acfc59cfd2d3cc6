#pragma once

#include <malloc.h>

namespace Heap {

/// The memory that all threads have allocated and not freed, in bytes.
inline double inUse()
{
    const auto info = mallinfo2();
    return double(info.uordblks) + double(info.hblkhd);
}

} // namespace Heap
