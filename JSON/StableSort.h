#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

namespace Quorvix {

/// Sorts like std::stable_sort(), and calls @p goOn about every millisecond. If that returns false, sorting
/// stops, and the elements are in any order; some may be there twice. Returns false then.
template<typename Iterator, typename Less, typename GoOn>
bool stableSort(Iterator first, Iterator last, Less less, GoOn goOn)
{
    constexpr std::ptrdiff_t runSize = 4096;
    const std::ptrdiff_t size = last - first;
    if (size <= runSize) {
        std::stable_sort(first, last, less);
        return true;
    }
    for (std::ptrdiff_t at = 0; at < size; at += runSize) {
        if (!goOn())
            return false;
        std::stable_sort(first + at, first + std::min(at + runSize, size), less);
    }
    std::vector<typename std::iterator_traits<Iterator>::value_type> merged;
    merged.reserve(size_t(size));
    for (std::ptrdiff_t width = runSize; width < size; width *= 2) {
        merged.clear();
        for (std::ptrdiff_t at = 0; at < size; at += 2 * width) {
            const Iterator middle = first + std::min(at + width, size);
            const Iterator end = first + std::min(at + 2 * width, size);
            Iterator left = first + at;
            Iterator right = middle;
            while (left != middle || right != end) {
                if (merged.size() % runSize == 0 && !goOn())
                    return false;
                const bool isRightNext = left == middle || (right != end && less(*right, *left));
                merged.push_back(isRightNext ? *right++ : *left++);
            }
        }
        std::copy(merged.cbegin(), merged.cend(), first);
    }
    return true;
}

} // namespace Quorvix
