// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/threads/loop_check.h"
#include "core/tables/sort/heap_sort.h"

#include <bit>
#include <cstdint>
#include <numeric>
#include <vector>

namespace core {

/// Sorts words. Random words cost no branch that the processor guesses wrong, sorted ones a single pass.
/// Throws ThreadDeath between pieces of a million.
void sort_words(std::span<std::uint64_t> words);

/// Indexes in an order.
struct SortedIndexes {
    std::vector<std::uint32_t> order;
    std::vector<bool> leads; ///< for each of them, whether it differs from the one before
};

namespace detail {

/// Packs an item's position and as much of its word as fits beside that, the upper bits of its distance from
/// the lowest word, into one word. A sort then moves and compares single words, all of them different.
class WordPacking {
  public:
    WordPacking(std::size_t count, std::uint64_t lowest, std::uint64_t highest) noexcept
        : positionBits_(static_cast<unsigned>(std::bit_width(count - 1))), lowest_(lowest) {
        const auto bits = static_cast<unsigned>(std::bit_width(highest - lowest)) + positionBits_;
        dropped_ = bits > 64 ? bits - 64 : 0;
    }
    [[nodiscard]] std::uint64_t pack(std::uint64_t word, std::size_t position) const noexcept {
        return (word - lowest_) >> dropped_ << positionBits_ | position;
    }
    [[nodiscard]] std::size_t position(std::uint64_t packed) const noexcept {
        return static_cast<std::size_t>(packed & ((std::uint64_t{1} << positionBits_) - 1));
    }
    /// Says whether words that are the same here are equal.
    [[nodiscard]] bool isExact() const noexcept { return dropped_ == 0; }
    [[nodiscard]] bool same(std::uint64_t a, std::uint64_t b) const noexcept {
        return (a ^ b) >> positionBits_ == 0;
    }

  private:
    unsigned positionBits_;
    unsigned dropped_;
    std::uint64_t lowest_;
};

/// Sorts indexes whose words are all equal.
template <class Compare>
void sort_by_comparing(std::span<std::uint32_t> order, std::size_t begin, SortedIndexes& sorted,
                       Compare& compare) {
    if (std::all_of(order.begin(), order.end(), [&](auto i) { return compare(order.front(), i) == 0; }))
        return;
    heap_sort(order, [&](std::uint32_t a, std::uint32_t b) {
        const int less = compare(a, b);
        return less != 0 ? less < 0 : a < b;
    });
    for (std::size_t i = 1; i < order.size(); ++i)
        sorted.leads[begin + i] = compare(order[i - 1], order[i]) != 0;
}

/// The lowest and the highest of the words of some indexes.
inline std::pair<std::uint64_t, std::uint64_t> limits_of(std::span<const std::uint32_t> order,
                                                         std::span<const std::uint64_t> words) noexcept {
    std::pair limits(words[order.front()], words[order.front()]);
    for (const std::uint32_t i : order)
        limits = {std::min(limits.first, words[i]), std::max(limits.second, words[i])};
    return limits;
}

/// Puts indexes into the order of their words, which lie close together, in a time that grows with their
/// number alone. `ends` has a zero for each word from the lowest one on, and gets the end of its indexes.
inline void count_off(std::span<const std::uint32_t> from, std::span<std::uint32_t> order,
                      std::span<const std::uint64_t> words, std::uint64_t lowest,
                      std::span<std::uint32_t> ends) noexcept {
    for (const std::uint32_t i : from)
        ++ends[static_cast<std::size_t>(words[i] - lowest)];
    std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), 0U);
    for (const std::uint32_t i : from)
        order[ends[static_cast<std::size_t>(words[i] - lowest)]++] = i;
}

/// Indexes that are still to be sorted, by their words at a depth.
struct WordRun {
    std::uint32_t begin;
    std::uint32_t end;
    unsigned depth;
    bool equal; // the words at that depth are known to be equal
};

/// Puts indexes into the order of as much of their words as is packed. `items` has room for all of them.
inline WordPacking sort_packed(std::span<const std::uint32_t> from, std::span<std::uint32_t> order,
                               std::span<const std::uint64_t> words, std::uint64_t lowest,
                               std::uint64_t highest, std::span<std::uint64_t> items) {
    const WordPacking packing(from.size(), lowest, highest);
    for (std::size_t i = 0; i < from.size(); ++i)
        items[i] = packing.pack(words[from[i]], i);
    sort_words(items);
    for (std::size_t i = 0; i < from.size(); ++i)
        order[i] = from[packing.position(items[i])];
    return packing;
}

} // namespace detail

/// Sorts the indexes of `words` by sequences of words, of which these are the first ones. Where words are
/// equal, `deepen(indexes, depth)` replaces them by the words at that depth and returns true. It returns
/// false when there are no more, and then `compare(a, b)` decides. Long sequences are read only as far as
/// they decide.
template <class Deepen, class Compare>
[[nodiscard]] SortedIndexes sort_by_words(std::span<std::uint64_t> words, Deepen deepen, Compare compare) {
    const auto count = static_cast<std::uint32_t>(words.size());
    SortedIndexes sorted{std::vector<std::uint32_t>(count), std::vector<bool>(count)};
    std::iota(sorted.order.begin(), sorted.order.end(), 0U);
    std::vector<std::uint64_t> packed(count);
    std::vector<std::uint32_t> before(count);
    std::vector<detail::WordRun> ahead = {{0, count, 0, false}};
    std::vector<std::uint32_t> ends;
    detail::LoopCheck check;
    const auto split = [&](const detail::WordRun& run, std::uint32_t first, std::uint32_t end, bool equal) {
        sorted.leads[run.begin + first] = true;
        if (end - first > 1)
            ahead.push_back({run.begin + first, run.begin + end, run.depth, equal});
    };
    while (!ahead.empty()) {
        check();
        const detail::WordRun run = ahead.back();
        ahead.pop_back();
        if (run.begin == run.end)
            continue;
        sorted.leads[run.begin] = true;
        const auto order = std::span(sorted.order).subspan(run.begin, run.end - run.begin);
        const auto [lowest, highest] = detail::limits_of(run.equal ? order.first(1) : order, words);
        if (lowest == highest) {
            if (order.size() == 1)
                continue;
            if (deepen(order, run.depth + 1))
                ahead.push_back({run.begin, run.end, run.depth + 1, false});
            else
                detail::sort_by_comparing(order, run.begin, sorted, compare);
            continue;
        }
        const auto from = std::span(before).first(order.size());
        std::copy(order.begin(), order.end(), from.begin());
        if (highest - lowest < order.size()) {
            ends.assign(static_cast<std::size_t>(highest - lowest) + 1, 0);
            detail::count_off(from, order, words, lowest, ends);
            for (std::uint32_t first = 0; const std::uint32_t end : ends) {
                if (first != end)
                    split(run, first, end, true);
                first = end;
            }
            continue;
        }
        const auto items = std::span(packed).first(order.size());
        const auto packing = detail::sort_packed(from, order, words, lowest, highest, items);
        for (std::uint32_t first = 0; first < items.size();) {
            std::uint32_t end = first + 1;
            while (end < items.size() && packing.same(items[first], items[end]))
                ++end;
            split(run, first, end, packing.isExact());
            first = end;
        }
    }
    return sorted;
}

} // namespace core
