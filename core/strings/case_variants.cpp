// SPDX-License-Identifier: Apache-2.0
#include "core/strings/case_variants.h"

#include "core/strings/folding.h"

#include <algorithm>

namespace core {

CaseVariants::CaseVariants() {
    const FoldTable& fold = FoldTable::instance();
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const wchar folded = fold.simple(static_cast<wchar>(unit));
        if (folded != unit)
            byUnit_.push_back({static_cast<wchar>(unit), folded});
    }
    byFolding_ = byUnit_;
    std::ranges::stable_sort(byFolding_, {}, &Folding::folded);
}

std::array<wchar, 4> CaseVariants::of(wchar folded) const noexcept {
    std::array<wchar, 4> variants;
    variants.fill(folded);
    std::size_t count = 1;
    auto entry = std::ranges::lower_bound(byFolding_, folded, {}, &Folding::folded);
    for (; entry != byFolding_.end() && entry->folded == folded && count < variants.size(); ++entry)
        variants[count++] = entry->unit;
    return variants;
}

} // namespace core
