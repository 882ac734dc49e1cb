// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <span>

namespace core {

/// Sorts small items by an order that may be inconsistent, or may throw: the order of objects is what their
/// class says. The sort never leaves the range and takes n × log n comparisons, whatever the answers are. A
/// sort by partitions would trust the order and walk out of the range.
template <class T, class Less>
void heap_sort(std::span<T> items, Less less) {
    std::make_heap(items.begin(), items.end(), less);
    std::sort_heap(items.begin(), items.end(), less);
}

} // namespace core
