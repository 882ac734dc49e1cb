// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace core {

/// A text in which some bytes are replaced by others.
template <class Replace>
[[nodiscard]] std::string replaced(std::string_view text, Replace replacement) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue; // the other half is replaced
        const std::string_view other = replacement(c);
        if (other.empty())
            out += c;
        else
            out += other;
    }
    return out;
}

/// A text as an element of HTML shows it. A line break becomes "<br>", a character that HTML cannot hold
/// U+FFFD.
[[nodiscard]] std::string in_html(std::string_view text);

} // namespace core
