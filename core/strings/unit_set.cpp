// SPDX-License-Identifier: Apache-2.0
#include "core/strings/unit_set.h"

#include "core/strings/case_variants.h"

#include <algorithm>

namespace core {

void UnitSet::addRange(wchar a, wchar b) {
    ranges_.emplace_back(std::min(a, b), std::max(a, b));
}

void UnitSet::addFoldings() {
    merge(); // so that no unit is visited twice, however the set is written
    const std::vector<Range> members = ranges_;
    for (const auto& [first, last] : members)
        CaseVariants::instance().forEachFolding(first, last,
                                                [this](wchar folded) { addRange(folded, folded); });
}

void UnitSet::finish() {
    merge();
    for (const auto& [first, last] : ranges_)
        for (unsigned c = first; c <= last && c < 256; ++c)
            low_[c / 64] |= std::uint64_t{1} << c % 64;
}

bool UnitSet::contains(wchar c) const noexcept {
    if (c < 256)
        return (low_[c / 64] >> c % 64 & 1) != 0;
    const auto after = std::ranges::upper_bound(ranges_, c, {}, &Range::first);
    return after != ranges_.begin() && c <= std::prev(after)->second;
}

void UnitSet::merge() {
    std::ranges::sort(ranges_);
    std::size_t kept = 0;
    for (const Range& range : ranges_) {
        if (kept > 0 && range.first <= ranges_[kept - 1].second + 1)
            ranges_[kept - 1].second = std::max(ranges_[kept - 1].second, range.second);
        else
            ranges_[kept++] = range;
    }
    ranges_.resize(kept);
}

} // namespace core
