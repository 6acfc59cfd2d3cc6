#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace Quorvix {

/// Sorts like std::stable_sort(), and calls @p goOn about every millisecond. If that returns false, sorting
/// stops, and the elements are in any order; some may be there twice. Returns false then.
///
/// Elements that are in order already take linear time, and so do a few such runs behind each other, as of
/// numbered names.
template<typename Iterator, typename Less, typename GoOn>
bool stableSort(Iterator first, Iterator last, Less less, GoOn goOn)
{
    constexpr std::ptrdiff_t smallestRun = 32;
    constexpr std::ptrdiff_t interval = 4096;
    const std::ptrdiff_t size = last - first;

    // Inserts the elements from @p at on into the run before them.
    const auto insert = [&](std::ptrdiff_t begin, std::ptrdiff_t at, std::ptrdiff_t end) {
        for (; at < end; ++at) {
            if (!less(first[at], first[at - 1]))
                continue;
            auto element = std::move(first[at]);
            std::ptrdiff_t place = at;
            do {
                first[place] = std::move(first[place - 1]);
            } while (--place > begin && less(element, first[place - 1]));
            first[place] = std::move(element);
        }
    };
    if (size <= smallestRun) {
        insert(0, 1, size);
        return true;
    }

    std::vector<std::ptrdiff_t> ends;
    for (std::ptrdiff_t begin = 0, asked = 0; begin < size; begin = ends.back()) {
        std::ptrdiff_t end = begin + 1;
        while (end < size && !less(first[end], first[end - 1])) {
            if (++end - asked >= interval) {
                asked = end;
                if (!goOn())
                    return false;
            }
        }
        const std::ptrdiff_t filled = std::max(end, std::min(begin + smallestRun, size));
        insert(begin, end, filled);
        ends.push_back(filled);
        if (filled - asked >= interval) {
            asked = filled;
            if (!goOn())
                return false;
        }
    }

    // Merges each two runs that are neighbours, until one is left.
    std::vector<typename std::iterator_traits<Iterator>::value_type> merged;
    merged.reserve(ends.size() > 1 ? size_t(size) : 0);
    while (ends.size() > 1) {
        merged.clear();
        std::vector<std::ptrdiff_t> joined;
        for (size_t run = 0; run < ends.size(); run += 2) {
            Iterator left = first + (run == 0 ? 0 : ends[run - 1]);
            const Iterator middle = first + ends[run];
            Iterator right = middle;
            const Iterator end = run + 1 < ends.size() ? first + ends[run + 1] : middle;
            while (left != middle && right != end) {
                if (merged.size() % interval == 0 && !goOn())
                    return false;
                const bool isRightNext = less(*right, *left);
                merged.push_back(isRightNext ? *right : *left);
                right += isRightNext;
                left += !isRightNext;
            }
            merged.insert(merged.end(), left, middle);
            merged.insert(merged.end(), right, end);
            joined.push_back(end - first);
        }
        std::copy(merged.cbegin(), merged.cend(), first);
        ends = std::move(joined);
    }
    return true;
}

} // namespace Quorvix
