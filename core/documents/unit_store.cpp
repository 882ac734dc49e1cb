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

/// How many ends begin among at most kBlock units. Without a branch, so that the compiler takes several units
/// at once.
std::uint32_t UnitStore::countBlock(std::uint32_t begin, std::uint32_t end) const noexcept {
    if (begin == end)
        return 0;
    std::uint16_t count = isEnd(begin) ? 1 : 0;
    const std::uint16_t separators = unicodeEnds_ ? 1 : 0;
    for (std::uint32_t at = begin + 1; at < end; ++at) {
        const wchar unit = units_[at];
        const int plain = (unit == u'\r') | ((unit == u'\n') & (units_[at - 1] != u'\r'));
        const int separator = ((unit == u'\u2028') | (unit == u'\u2029')) & separators;
        count = static_cast<std::uint16_t>(count + (plain | separator));
    }
    return count;
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
    // The last block with no more ends in front of it; the counts up to `end` have been written.
    const std::uint32_t* const counts = counts_;
    const std::uint32_t* const block =
        std::upper_bound(counts + begin / kBlock, counts + end / kBlock + 1, wanted) - 1;
    std::uint32_t count = *block;
    for (auto at = static_cast<std::uint32_t>(block - counts) * kBlock;; ++at) {
        if (isEnd(at) && count++ == wanted)
            return at;
    }
}

} // namespace core::detail
