// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <span>
#include <utility>

namespace core {
namespace detail {

/// Parts up to this size are left to the last pass.
inline constexpr std::size_t kSmallPart = 16;

/// Puts the median of the first, middle and last item to the front.
template <class T, class Less>
void median_to_front(std::span<T> items, Less& less) {
    T& first = items.front();
    T& middle = items[items.size() / 2];
    T& last = items.back();
    T& median = less(middle, last) ? (less(first, middle) ? middle
                                      : less(first, last) ? first
                                                          : last)
                                   : (less(first, last)     ? last
                                      : less(first, middle) ? first
                                                            : middle);
    std::swap(first, median);
}

/// Brings the items that are less than the first one in front of it; returns its place, in which it stays.
///
/// Each item is stored twice and no branch depends on what it is: where comparing costs nothing, this takes a
/// third of the time of a search from both ends, which guesses wrong at every other item.
template <class T, class Less>
[[nodiscard]] std::size_t partition(std::span<T> items, Less& less) {
    const T pivot = items.front();
    std::size_t cut = 0;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const T item = items[i];
        items[i] = items[cut + 1];
        items[cut + 1] = item;
        cut += less(item, pivot) ? 1U : 0U;
    }
    items.front() = items[cut];
    items[cut] = pivot;
    return cut;
}

template <class T, class Less>
void introsort_parts(std::span<T> items, Less& less, int depth) {
    while (items.size() > kSmallPart) {
        if (depth-- == 0) {
            std::make_heap(items.begin(), items.end(), less);
            std::sort_heap(items.begin(), items.end(), less);
            return;
        }
        median_to_front(items, less);
        const std::size_t cut = partition(items, less);
        introsort_parts(items.subspan(cut + 1), less, depth);
        items = items.first(cut);
    }
}

} // namespace detail

/// Sorts small items by `less`, no two of which it may call equal. Partitions down to small parts, 2 × ⌊log2
/// n⌋ levels deep, heap-sorts what is not small by then, and finishes with one pass of insertion over
/// everything, so n × log n comparisons always do. An inconsistent `less` gives some order, in the same time.
template <class T, class Less>
void introsort(std::span<T> items, Less less) {
    if (items.size() < 2)
        return;
    const int levels = static_cast<int>(std::bit_width(items.size())) - 1;
    detail::introsort_parts(items, less, 2 * levels);
    for (std::size_t i = 1; i < items.size(); ++i) {
        // No item is further from its place than its part is long.
        const std::size_t lowest = i >= detail::kSmallPart ? i - detail::kSmallPart : 0;
        const T item = items[i];
        std::size_t place = i;
        for (; place > lowest && less(item, items[place - 1]); --place)
            items[place] = items[place - 1];
        items[place] = item;
    }
}

} // namespace core
