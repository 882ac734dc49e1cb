// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/introsort.h"

#include <cstdint>
#include <vector>

namespace core {

/// What a sort by words moves: the word that is being compared, and whose it is.
struct WordItem {
    std::uint64_t word;
    std::uint32_t index;
    bool leads = true; ///< once sorted: differs from the item before it
};

/// Sorts items, no two of which have one index, by sequences of words, of which each item holds the first:
/// where words are equal, `deepen(items, depth)` is asked for those of that depth. It puts them into the
/// items and answers true; or it answers false, when there is no more to compare, or when it has sorted the
/// items itself and said which lead. Comparing never leaves the items, and what belongs to a long sequence is
/// looked at only where it decides.
template <class Deepen>
void sort_by_words(std::span<WordItem> items, Deepen deepen) {
    struct Run {
        std::span<WordItem> items;
        unsigned depth;
    };
    // The index makes all items different, and branches would guess wrong.
    const auto less = [](const WordItem& a, const WordItem& b) {
        return static_cast<bool>(
            static_cast<unsigned>(a.word < b.word) |
            (static_cast<unsigned>(a.word == b.word) & static_cast<unsigned>(a.index < b.index)));
    };
    std::vector<Run> ahead = {{items, 0}};
    while (!ahead.empty()) {
        const auto [run, depth] = ahead.back();
        ahead.pop_back();
        const bool differ = std::any_of(run.begin(), run.end(),
                                        [&](const WordItem& item) { return item.word != run.front().word; });
        if (differ)
            introsort(run, less);
        for (std::size_t first = 0; first < run.size();) {
            std::size_t end = first + 1;
            for (; end < run.size() && run[end].word == run[first].word; ++end)
                run[end].leads = false;
            run[first].leads = true;
            const auto equal = run.subspan(first, end - first);
            if (equal.size() > 1 && deepen(equal, depth + 1))
                ahead.push_back({equal, depth + 1});
            first = end;
        }
    }
}

} // namespace core
