// SPDX-License-Identifier: Apache-2.0
#include "core/tables/sort/word_sort.h"

#include <boost/sort/pdqsort/pdqsort.hpp>

#include <algorithm>

namespace core {

void sort_words(std::span<std::uint64_t> words) {
    constexpr std::size_t kAtOnce = std::size_t{1} << 20; // some 40 ms
    if (words.size() <= kAtOnce) {
        boost::sort::pdqsort_branchless(words.begin(), words.end());
        return;
    }
    const std::size_t half = words.size() / 2;
    sort_words(words.first(half));
    Thread::check();
    sort_words(words.subspan(half));
    Thread::check();
    const auto middle = words.begin() + static_cast<std::ptrdiff_t>(half);
    if (middle[-1] > *middle) // not sorted yet
        std::inplace_merge(words.begin(), middle, words.end());
}

} // namespace core
