// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folding.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace core {

FoldTable::FoldTable() noexcept {
    // Few units fold to anything else than themselves, and they stand close together: blocks that fold to
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

int FoldedReader::nextLong() noexcept {
    const std::int32_t units = U16_IS_LEAD(at_[0]) && end_ - at_ > 1 && U16_IS_TRAIL(at_[1]) ? 2 : 1;
    UErrorCode status = U_ZERO_ERROR;
    count_ = static_cast<unsigned>(u_strFoldCase(folding_.data(), static_cast<std::int32_t>(folding_.size()),
                                                 at_, units, U_FOLD_CASE_DEFAULT, &status));
    at_ += units;
    pending_ = 1;
    return folding_[0];
}

int compare_foldings(wstring_view a, wstring_view b) noexcept {
    FoldedReader aReader(a);
    FoldedReader bReader(b);
    for (;;) {
        const int x = aReader.next();
        const int y = bReader.next();
        if (x != y)
            return x < 0 ? -1 : y < 0 ? 1 : x - y;
        if (x < 0)
            return 0;
    }
}

} // namespace core
