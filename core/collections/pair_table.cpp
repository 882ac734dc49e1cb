// SPDX-License-Identifier: Apache-2.0
#include "core/collections/pair_table.h"

#include <algorithm>
#include <new>
#include <utility>

namespace core {

void PairTable::append(std::uint64_t hash, Value key, Value value) {
    if (pairs_.size() == kMaxPairs)
        throw std::bad_alloc();
    if (pairs_.empty())
        pairs_.reserve(kUnindexed);
    const bool indexed = pairs_.size() >= kUnindexed;
    if (indexed && 3 * (pairs_.size() + 1) > 2 * slots_.size())
        grow();
    pairs_.push_back({hash, std::move(key), std::move(value)});
    if (!slots_.empty())
        enter(slots_, shift_, {tag_of(hash), static_cast<std::uint32_t>(pairs_.size() - 1)});
}

void PairTable::enter(std::vector<Slot>& slots, unsigned shift, Slot slot) noexcept {
    const std::size_t mask = slots.size() - 1;
    std::size_t i = slot.tag >> shift;
    while (slots[i].tag != kFree)
        i = (i + 1) & mask;
    slots[i] = slot;
}

/// Doubles the slots. Tags hold all the bits that are needed, and slots are met in the
/// order of their new homes.
void PairTable::grow() {
    constexpr std::size_t kFirst = 4 * kUnindexed;
    constexpr unsigned kFirstShift = 32 - 5;
    static_assert(kFirst >> (32 - kFirstShift) == 1);
    if (slots_.empty()) {
        std::vector<Slot> slots(kFirst);
        for (std::size_t i = 0; i < pairs_.size(); ++i)
            enter(slots, kFirstShift, {tag_of(pairs_[i].hash), static_cast<std::uint32_t>(i)});
        slots_.swap(slots);
        shift_ = kFirstShift;
        return;
    }
    std::vector<Slot> slots(2 * slots_.size());
    for (const Slot& slot : slots_) {
        if (slot.tag != kFree)
            enter(slots, shift_ - 1, slot);
    }
    slots_.swap(slots);
    --shift_;
}

std::size_t PairTable::slotOf(const Pair& pair) const noexcept {
    const auto place = static_cast<std::uint32_t>(&pair - pairs_.data());
    std::size_t i = home(tag_of(pair.hash));
    while (slots_[i].place != place)
        i = (i + 1) & (slots_.size() - 1);
    return i;
}

/// Frees a slot and moves back what would no longer be found behind it.
void PairTable::leave(std::size_t slot) noexcept {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = (slot + 1) & mask; slots_[i].tag != kFree; i = (i + 1) & mask) {
        const std::size_t distance = (i - home(slots_[i].tag)) & mask;
        if (distance >= ((i - slot) & mask)) {
            slots_[slot] = slots_[i];
            slot = i;
        }
    }
    slots_[slot].tag = kFree;
}

void PairTable::erase(Pair& pair) noexcept {
    // Let go of at the end: what dies may look at this table.
    const Value key = std::move(pair.key);
    const Value value = std::move(pair.value);
    if (slots_.empty()) {
        pairs_.erase(pairs_.begin() + (&pair - pairs_.data()));
        return;
    }
    leave(slotOf(pair));
    pair.hash = 0;
    ++erased_;
    while (!pairs_.empty() && pairs_.back().hash == 0) {
        pairs_.pop_back();
        --erased_;
    }
    if (2 * std::size_t{erased_} > pairs_.size())
        compact();
}

/// Closes the gaps.
void PairTable::compact() noexcept {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
        if (pairs_[i].hash == 0)
            continue;
        if (i != kept) {
            slots_[slotOf(pairs_[i])].place = static_cast<std::uint32_t>(kept);
            pairs_[kept] = std::move(pairs_[i]);
        }
        ++kept;
    }
    pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(kept), pairs_.end());
    erased_ = 0;
    if (kept <= kUnindexed)
        std::vector<Slot>().swap(slots_);
}

void PairTable::clear() noexcept {
    const PairTable dying = std::exchange(*this, PairTable());
}

PairTable::Pair& PairTable::at(std::size_t position) noexcept {
    if (erased_ != 0)
        compact();
    return pairs_[position];
}

std::size_t PairTable::positionOf(const Pair& pair) noexcept {
    const auto place = &pair - pairs_.data();
    if (erased_ == 0)
        return static_cast<std::size_t>(place);
    const auto gaps =
        std::count_if(pairs_.begin(), pairs_.begin() + place, [](const Pair& p) { return p.hash == 0; });
    compact();
    return static_cast<std::size_t>(place - gaps);
}

} // namespace core
