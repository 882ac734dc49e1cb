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

/// Puts the median of the first, middle and last item in the middle.
template <class T, class Less>
void order_three(std::span<T> items, Less& less) {
    T& first = items.front();
    T& middle = items[items.size() / 2];
    T& last = items.back();
    if (less(middle, first))
        std::swap(first, middle);
    if (less(last, middle)) {
        std::swap(middle, last);
        if (less(middle, first))
            std::swap(first, middle);
    }
}

/// Splits into two parts, none of them empty, so that no item of the second part is less than one of the
/// first; returns the size of the first. Stays inside whatever `less` says.
template <class T, class Less>
[[nodiscard]] std::size_t partition(std::span<T> items, Less& less) {
    order_three(items, less);
    const T pivot = items[items.size() / 2];
    std::size_t i = 0;
    std::size_t j = items.size() - 1;
    for (;;) {
        do
            ++i;
        while (i < items.size() - 1 && less(items[i], pivot));
        do
            --j;
        while (j > 0 && less(pivot, items[j]));
        if (i >= j)
            return i;
        std::swap(items[i], items[j]);
    }
}

template <class T, class Less>
void introsort_parts(std::span<T> items, Less& less, int depth) {
    while (items.size() > kSmallPart) {
        if (depth-- == 0) {
            std::make_heap(items.begin(), items.end(), less);
            std::sort_heap(items.begin(), items.end(), less);
            return;
        }
        const std::size_t cut = partition(items, less);
        introsort_parts(items.subspan(cut), less, depth);
        items = items.first(cut);
    }
}

} // namespace detail

/// Sorts by `less`; equal items end in any order. Partitions down to small parts, 2 × ⌊log2 n⌋ levels deep,
/// heap-sorts what is not small by then, and finishes with one pass of insertion over everything, so n × log
/// n comparisons always do. An inconsistent `less` gives some order, in the same time.
template <class T, class Less>
void introsort(std::span<T> items, Less less) {
    if (items.size() < 2)
        return;
    const int levels = static_cast<int>(std::bit_width(items.size())) - 1;
    detail::introsort_parts(items, less, 2 * levels);
    for (std::size_t i = 1; i < items.size(); ++i) {
        // No item is further from its place than its part is long.
        const std::size_t lowest = i >= detail::kSmallPart ? i - detail::kSmallPart : 0;
        T item = std::move(items[i]);
        std::size_t place = i;
        for (; place > lowest && less(item, items[place - 1]); --place)
            items[place] = std::move(items[place - 1]);
        items[place] = std::move(item);
    }
}

} // namespace core
