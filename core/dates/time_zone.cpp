// SPDX-License-Identifier: Apache-2.0
#include "core/dates/time_zone.h"

#include <algorithm>

namespace core {

TimeZone::TimeZone(std::int32_t first, const std::vector<Change>& changes, Repeats repeats,
                   std::int64_t cycle)
    : offsets_{first}, repeats_(repeats), cycle_(cycle) {
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const auto [moment, offset] = changes[i];
        const bool replaced = i + 1 < changes.size() && changes[i + 1].moment == moment;
        const std::int32_t before = offsets_.back();
        if (replaced || offset == before)
            continue;
        // Clocks set forward skip what lies before the later of both readings, clocks set back show it twice.
        const std::int64_t reading = moment + std::max(before, offset);
        universal_.push_back(moment);
        local_.push_back(local_.empty() ? reading : std::max(reading, local_.back()));
        offsets_.push_back(offset);
    }
}

std::int32_t TimeZone::offsetAtUniversal(std::int64_t moment) const noexcept {
    return find(universal_, moment);
}

std::int32_t TimeZone::offsetAtLocal(std::int64_t moment) const noexcept {
    return find(local_, moment);
}

std::int32_t TimeZone::find(const std::vector<std::int64_t>& moments, std::int64_t moment) const noexcept {
    const std::int64_t past = moment - cycle_;
    if ((past >= kCycle && repeats_ != Repeats::never) || (past < 0 && repeats_ == Repeats::always))
        moment = cycle_ + (past % kCycle + kCycle) % kCycle;
    const auto next = std::upper_bound(moments.begin(), moments.end(), moment);
    return offsets_[static_cast<std::size_t>(next - moments.begin())];
}

} // namespace core
