// SPDX-License-Identifier: Apache-2.0
#include "core/collections/pair_table.h"

#include <algorithm>
#include <utility>

namespace core {

void PairTable::append(std::uint64_t hash, Value key, Value value) {
    if (pairs_.empty())
        pairs_.reserve(kUnindexed);
    if (index_.empty() && pairs_.size() < kUnindexed) {
        pairs_.push_back({hash, std::move(key), std::move(value)});
        return;
    }
    index_.reserve(index_.empty() ? 2 * kUnindexed : index_.size() + 1);
    pairs_.push_back({hash, std::move(key), std::move(value)});
    for (std::size_t i = index_.empty() ? 0 : pairs_.size() - 1; i < pairs_.size(); ++i)
        index_.add(pairs_[i].hash, static_cast<HashIndex::Position>(i));
}

void PairTable::erase(Pair& pair) noexcept {
    // Let go of at the end: what dies may look at this table.
    const Value key = std::move(pair.key);
    const Value value = std::move(pair.value);
    if (index_.empty()) {
        pairs_.erase(pairs_.begin() + (&pair - pairs_.data()));
        return;
    }
    index_.remove(pair.hash, storedPosition(pair));
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
            index_.move(pairs_[i].hash, static_cast<HashIndex::Position>(i),
                        static_cast<HashIndex::Position>(kept));
            pairs_[kept] = std::move(pairs_[i]);
        }
        ++kept;
    }
    pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(kept), pairs_.end());
    erased_ = 0;
    if (kept <= kUnindexed)
        index_.clear();
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
    const std::size_t position = storedPosition(pair);
    if (erased_ == 0)
        return position;
    const auto gaps = std::count_if(pairs_.begin(), pairs_.begin() + static_cast<std::ptrdiff_t>(position),
                                    [](const Pair& p) { return p.hash == 0; });
    compact();
    return position - static_cast<std::size_t>(gaps);
}

} // namespace core
