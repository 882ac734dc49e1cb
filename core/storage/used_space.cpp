// SPDX-License-Identifier: Apache-2.0
#include "core/storage/used_space.h"

#include <algorithm>

namespace core {
namespace {

// So many ranges wait for a merge at least: what is merged often is copied often.
constexpr std::size_t kLeastWaiting = 4096;

} // namespace

void UsedSpace::add(std::uint64_t begin, std::uint64_t end) {
    if (!waiting_.empty() && waiting_.back().second == begin) {
        waiting_.back().second = end;
        return;
    }
    if (waiting_.size() >= std::max(kLeastWaiting, used_.size() / 2))
        settle();
    waiting_.emplace_back(begin, end);
}

void UsedSpace::settle() {
    merge(used_, waiting_);
    Ranges twice;
    std::size_t count = 0;
    for (const Range& range : used_) {
        if (count == 0 || range.first > used_[count - 1].second) {
            used_[count++] = range;
            continue;
        }
        Range& last = used_[count - 1];
        if (range.first < last.second)
            twice.emplace_back(range.first, std::min(range.second, last.second));
        last.second = std::max(last.second, range.second);
    }
    used_.resize(count);
    merge(shared_, twice);
    count = 0;
    for (const Range& range : shared_) {
        if (count == 0 || range.first >= shared_[count - 1].second)
            shared_[count++] = range;
        else
            shared_[count - 1].second = std::max(shared_[count - 1].second, range.second);
    }
    shared_.resize(count);
}

/// Puts `more` into `into`, by address, and empties it.
void UsedSpace::merge(Ranges& into, Ranges& more) {
    std::sort(more.begin(), more.end());
    const auto middle = static_cast<std::ptrdiff_t>(into.size());
    into.insert(into.end(), more.begin(), more.end());
    more.clear();
    std::inplace_merge(into.begin(), into.begin() + middle, into.end());
}

UsedSpace::Ranges::const_iterator UsedSpace::firstBehind(const Ranges& ranges, std::uint64_t address) {
    return std::upper_bound(ranges.begin(), ranges.end(), address,
                            [](std::uint64_t at, const Range& range) { return at < range.second; });
}

bool UsedSpace::touches(const Ranges& ranges, std::uint64_t begin, std::uint64_t end) {
    const auto range = firstBehind(ranges, begin);
    return range != ranges.end() && range->first < end;
}

} // namespace core
