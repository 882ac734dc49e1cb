// SPDX-License-Identifier: Apache-2.0
#include "core/strings/fold_table.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace core {

FoldTable::FoldTable() noexcept {
    // Few units fold to anything but themselves, and they stand close together: blocks that fold to
    // themselves as a whole are done by one call. A block never holds both halves of a surrogate pair.
    constexpr std::size_t kBlock = 64;
    std::iota(units_.begin(), units_.end(), u'\0');
    for (std::size_t start = 0; start < units_.size(); start += kBlock) {
        wchar block[kBlock];
        std::copy_n(units_.begin() + static_cast<std::ptrdiff_t>(start), kBlock, block);
        wchar folded[3 * kBlock];
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            u_strFoldCase(folded, std::size(folded), block, kBlock, U_FOLD_CASE_DEFAULT, &status);
        if (length == kBlock && std::equal(std::begin(block), std::end(block), folded))
            continue;
        for (const wchar c : block) {
            status = U_ZERO_ERROR;
            const std::int32_t units = u_strFoldCase(folded, 3, &c, 1, U_FOLD_CASE_DEFAULT, &status);
            units_[c] = units == 1 ? folded[0] : kLong;
        }
    }
    for (std::size_t c = 0xD800; c <= 0xDBFF; ++c)
        units_[c] = kLong;
}

wchar FoldTable::simpleOfLong(wchar c) noexcept {
    return static_cast<wchar>(u_foldCase(c, U_FOLD_CASE_DEFAULT));
}

} // namespace core
