// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folded_reader.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace core {

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
