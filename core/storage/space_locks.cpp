// SPDX-License-Identifier: Apache-2.0
#include "core/storage/space_locks.h"

#include "core/storage/patience.h"
#include "core/storage/storage_error.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <deque>
#include <iterator>
#include <utility>

namespace core {
namespace {

constexpr std::uint64_t kSpace = std::uint64_t{1} << 61;

// Where others' pins lie is found by halving, as far as it is worth it.
constexpr std::uint64_t kFine = std::uint64_t{16} << 10;
constexpr std::uint64_t kCoarse = std::uint64_t{1} << 20;
constexpr int kTries = 64;

} // namespace

// The system's locks.

/// Whether others have pinned any of it. Nothing of it is pinned here.
bool SpaceLocks::isOthers(std::uint64_t begin, std::uint64_t end) const {
    if (!shared_ || begin >= end)
        return false;
    if (!shared_->tryLock(kSpace + begin, end - begin, LockKind::exclusive))
        return true;
    unlock(begin, end);
    return false;
}

bool SpaceLocks::areOthers(const Ranges& ranges) const {
    return std::any_of(ranges.begin(), ranges.end(),
                       [this](const auto& range) { return isOthers(range.first, range.second); });
}

void SpaceLocks::lock(std::uint64_t begin, std::uint64_t end) const {
    Patience patience(Patience::Pauses::growing);
    while (!shared_->tryLock(kSpace + begin, end - begin, LockKind::shared)) {
        if (!patience.sleep())
            throw_storage_error(messages::kStorageBusy, url_);
    }
}

void SpaceLocks::unlock(std::uint64_t begin, std::uint64_t end) const noexcept {
    try {
        shared_->unlock(kSpace + begin, end - begin);
    } catch (...) { // it ends with the open file
    }
}

// The pins of this open file.

/// Cuts the range in two that `address` lies in.
void SpaceLocks::splitAt(std::uint64_t address) {
    auto range = own_.lower_bound(address);
    if (range == own_.begin())
        return;
    --range;
    if (range->second.end <= address)
        return;
    own_.emplace(address, range->second);
    range->second.end = address;
}

SpaceLocks::Ranges SpaceLocks::gaps(std::uint64_t begin, std::uint64_t end) const {
    Ranges result;
    auto range = own_.upper_bound(begin);
    if (range != own_.begin())
        begin = std::max(begin, std::prev(range)->second.end);
    for (; range != own_.end() && range->first < end; ++range) {
        if (begin < range->first)
            result.emplace_back(begin, range->first);
        begin = range->second.end;
    }
    if (begin < end)
        result.emplace_back(begin, end);
    return result;
}

void SpaceLocks::pinRange(std::uint64_t begin, std::uint64_t end) {
    end = std::min(end, kEnd); // a damaged table may claim more
    try {
        splitAt(begin);
        splitAt(end);
        const Ranges added = gaps(begin, end);
        for (const auto& [first, last] : added)
            own_.emplace(first, Own{last, 0});
        for (const auto& [first, last] : added) {
            if (shared_)
                lock(first, last);
        }
    } catch (...) {
        dropUnpinned(begin, end);
        throw;
    }
    for (auto range = own_.lower_bound(begin); range != own_.end() && range->first < end; ++range)
        ++range->second.count;
}

void SpaceLocks::dropUnpinned(std::uint64_t begin, std::uint64_t end) noexcept {
    for (auto range = own_.lower_bound(begin); range != own_.end() && range->first < end;) {
        if (range->second.count != 0) {
            ++range;
            continue;
        }
        if (shared_)
            unlock(range->first, range->second.end);
        range = own_.erase(range);
    }
}

void SpaceLocks::pin(const Ranges& ranges) {
    std::size_t done = 0;
    try {
        for (; done < ranges.size(); ++done)
            pinRange(ranges[done].first, ranges[done].second);
    } catch (...) {
        unpin(ranges, done);
        throw;
    }
}

void SpaceLocks::unpin(const Ranges& ranges, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const auto [begin, end] = ranges[i];
        for (auto range = own_.lower_bound(begin); range != own_.end() && range->first < end; ++range)
            --range->second.count;
        dropUnpinned(begin, end);
    }
}

// Everybody's pins.

bool SpaceLocks::isPinned(std::uint64_t begin, std::uint64_t end) const {
    const Ranges free = gaps(begin, end);
    return free.size() != 1 || free.front() != std::pair(begin, end) || isOthers(begin, end);
}

RangeSet SpaceLocks::pinned(std::uint64_t begin) const {
    Ranges all;
    for (const auto& [first, own] : own_) {
        if (own.end > begin)
            all.emplace_back(std::max(begin, first), own.end);
    }
    if (areOthers(gaps(begin, kEnd)))
        findOthers(begin, all);
    std::sort(all.begin(), all.end());
    RangeSet result;
    for (const auto& [first, last] : all)
        result.add(first, last);
    return result;
}

void SpaceLocks::findOthers(std::uint64_t begin, Ranges& all) const {
    std::deque<Ranges::value_type> asked;
    const auto ask = [&](std::uint64_t first, std::uint64_t last) {
        for (const auto& gap : gaps(first, last))
            asked.push_back(gap);
    };
    // Behind the file lies only what writers are about to write.
    std::uint64_t behind = std::max(begin, file_->length());
    ask(begin, behind);
    for (std::uint64_t step = kCoarse; behind < kEnd && areOthers(gaps(behind, kEnd)); step *= 2) {
        const std::uint64_t next = step < kEnd - behind ? behind + step : kEnd;
        ask(behind, next);
        behind = next;
    }
    for (int tries = kTries; !asked.empty(); asked.pop_front()) {
        const auto [first, last] = asked.front();
        if (!isOthers(first, last))
            continue;
        if (last - first <= kFine || tries-- <= 0) {
            all.emplace_back(first, last);
            continue;
        }
        const std::uint64_t middle = first + (last - first) / 2;
        asked.emplace_back(first, middle);
        asked.emplace_back(middle, last);
    }
}

} // namespace core
