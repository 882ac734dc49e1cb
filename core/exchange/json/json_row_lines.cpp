// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/json/json_row_lines.h"

namespace core {

std::uint64_t JsonRowLines::lineOf(std::size_t row) noexcept {
    while (rows_ <= row) {
        if (!next())
            return 0;
    }
    return line_;
}

bool JsonRowLines::next() noexcept {
    while (at_ < text_.size()) {
        const char c = text_[at_++];
        if (c == '\n')
            ++line_;
        else if (c == '"')
            quoted_ = !quoted_;
        else if (quoted_)
            at_ += c == '\\' ? 1 : 0; // what stands behind ends no string
        else if (c == ']' || c == '}')
            --depth_;
        else if ((c == '[' || c == '{') && depth_++ == 1) {
            ++rows_;
            return true;
        }
    }
    return false;
}

} // namespace core
