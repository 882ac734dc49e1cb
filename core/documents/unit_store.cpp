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

std::uint32_t UnitStore::append(wstring_view text) noexcept {
    const std::uint32_t begin = size_;
    std::copy(text.begin(), text.end(), units_ + begin);
    const std::uint32_t end = begin + static_cast<std::uint32_t>(text.size());
    for (std::uint32_t block = begin / kBlock + 1; block * kBlock <= end; ++block) {
        const std::uint32_t from = (block - 1) * kBlock;
        std::uint32_t count = counts_[block - 1];
        for (std::uint32_t at = from; at < from + kBlock; ++at)
            count += isEnd(at) ? 1 : 0;
        counts_[block] = count;
    }
    size_ = end;
    return begin;
}

std::uint32_t UnitStore::endsBefore(std::uint32_t at) const noexcept {
    std::uint32_t count = counts_[at / kBlock];
    for (std::uint32_t i = at / kBlock * kBlock; i < at; ++i)
        count += isEnd(i) ? 1 : 0;
    return count;
}

std::uint32_t UnitStore::countEnds(std::uint32_t begin, std::uint32_t end) const noexcept {
    if (begin == end)
        return 0;
    if (end - begin <= kBlock) { // no longer than what the counts would leave
        std::uint32_t count = dividesEnd(begin) ? 1 : 0;
        for (std::uint32_t i = begin; i < end; ++i)
            count += isEnd(i) ? 1 : 0;
        return count;
    }
    return endsBefore(end) - endsBefore(begin) + (dividesEnd(begin) ? 1 : 0);
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
