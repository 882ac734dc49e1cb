// SPDX-License-Identifier: Apache-2.0
#include "core/tables/sort/word_sort.h"

#include <boost/sort/pdqsort/pdqsort.hpp>

namespace core {

void sort_words(std::span<std::uint64_t> words) noexcept {
    boost::sort::pdqsort_branchless(words.begin(), words.end());
}

} // namespace core
