// SPDX-License-Identifier: Apache-2.0
#include "core/documents/unit_store.h"

#include <algorithm>
#include <new>

namespace core::detail {

UnitStore* UnitStore::create(std::uint32_t capacity, bool unicodeEnds) {
    // One block of memory: the store, the counts, the units.
    const std::size_t counts = capacity / kBlock + 1;
    const std::size_t bytes = sizeof(UnitStore) + counts * sizeof(std::uint32_t) + capacity * sizeof(wchar);
    static_assert(sizeof(UnitStore) % alignof(std::uint32_t) == 0);
    auto* const memory = static_cast<std::byte*>(::operator new(bytes));
    auto* const first = reinterpret_cast<std::uint32_t*>(memory + sizeof(UnitStore));
    first[0] = 0;
    return new (memory) UnitStore(capacity, unicodeEnds, reinterpret_cast<wchar*>(first + counts), first);
}

void UnitStore::release() const noexcept {
    if (holders_.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    auto* const self = const_cast<UnitStore*>(this);
    self->~UnitStore();
    ::operator delete(self);
}

bool UnitStore::isEnd(std::uint32_t at) const noexcept {
    const wchar unit = units_[at];
    if (unit == u'\n')
        return !dividesEnd(at);
    return unit == u'\r' || (unicodeEnds_ && (unit == u'\u2028' || unit == u'\u2029'));
}

namespace {

constexpr std::uint32_t kStride = 32; // units that are looked at together when an end is looked for

/// How many ends begin among `count` units, at most UnitStore::kBlock, each with one in front of it. All in
/// 16 bits and without a branch, so that the compiler takes several units at once.
template <bool kSeparators>
[[nodiscard]] std::uint16_t count_ends(const wchar* units, std::size_t count) noexcept {
    std::uint16_t ends = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const wchar unit = units[i];
        const wchar before = units[static_cast<std::ptrdiff_t>(i) - 1];
        bool is = (unit == u'\r') | ((unit == u'\n') & (before != u'\r'));
        if constexpr (kSeparators)
            is |= (unit == u'\u2028') | (unit == u'\u2029');
        ends = static_cast<std::uint16_t>(ends + (is ? 1 : 0));
    }
    return ends;
}

} // namespace

std::uint32_t UnitStore::countBlock(std::uint32_t begin, std::uint32_t end) const noexcept {
    if (begin == end)
        return 0;
    const std::uint32_t first = isEnd(begin) ? 1 : 0;
    const wchar* const rest = units_ + begin + 1;
    const std::size_t count = end - begin - 1;
    return first + (unicodeEnds_ ? count_ends<true>(rest, count) : count_ends<false>(rest, count));
}

std::uint32_t UnitStore::append(wstring_view text) noexcept {
    const std::uint32_t begin = size_;
    std::copy(text.begin(), text.end(), units_ + begin);
    const std::uint32_t end = begin + static_cast<std::uint32_t>(text.size());
    for (std::uint32_t block = begin / kBlock + 1; block * kBlock <= end; ++block)
        counts_[block] = counts_[block - 1] + countBlock((block - 1) * kBlock, block * kBlock);
    size_ = end;
    return begin;
}

std::uint32_t UnitStore::endsBefore(std::uint32_t at) const noexcept {
    const std::uint32_t block = at / kBlock;
    return counts_[block] + countBlock(block * kBlock, at);
}

std::uint32_t UnitStore::countEnds(std::uint32_t begin, std::uint32_t end) const noexcept {
    if (begin == end)
        return 0;
    const std::uint32_t divided = dividesEnd(begin) ? 1 : 0;
    if (end - begin <= kBlock) // no longer than what the counts would leave
        return countBlock(begin, end) + divided;
    return endsBefore(end) - endsBefore(begin) + divided;
}

std::uint32_t UnitStore::findEnd(std::uint32_t begin, std::uint32_t end,
                                 std::uint32_t number) const noexcept {
    if (dividesEnd(begin)) {
        if (number == 0)
            return begin;
        --number;
    }
    const std::uint32_t wanted = endsBefore(begin) + number; // ends in front of the one that is wanted
    // The last block with no more ends in front of it; the counts up to `end` have been written. Ends stand
    // evenly in most texts, so that a guess or two come close to it.
    const std::uint32_t* const counts = counts_;
    std::uint32_t low = begin / kBlock;
    std::uint32_t high = end / kBlock + 1; // the first that is known to have more, or is not looked at
    for (int guesses = 0; guesses < 3 && high - low > 8; ++guesses) {
        const std::uint64_t ends = counts[high - 1] - counts[low];
        const std::uint64_t share = ends == 0 ? 0 : std::uint64_t{wanted - counts[low]} * (high - low) / ends;
        const std::uint32_t guess =
            low + static_cast<std::uint32_t>(std::min<std::uint64_t>(share, high - low - 1));
        const std::uint32_t near = guess > low + 2 ? guess - 2 : low;
        const std::uint32_t far = guess + 3 < high ? guess + 3 : high;
        if (counts[near] <= wanted)
            low = near;
        else
            high = near;
        if (low < far && far < high) {
            if (counts[far] > wanted)
                high = far;
            else
                low = far;
        }
    }
    const std::uint32_t* const block = std::upper_bound(counts + low, counts + high, wanted) - 1;
    auto at = static_cast<std::uint32_t>(block - counts) * kBlock;
    std::uint32_t count = *block;
    for (std::uint32_t behind = at + kStride; behind < end; behind = at + kStride) { // past what has too few
        const std::uint32_t more = countBlock(at, behind);
        if (count + more > wanted)
            break;
        count += more;
        at = behind;
    }
    for (;; ++at) {
        if (isEnd(at) && count++ == wanted)
            return at;
    }
}

} // namespace core::detail
