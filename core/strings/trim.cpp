// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/trim.h>

#include <algorithm>

namespace core {
namespace {

// The length of the white space character, in UTF-8, that `text` begins (or ends) with; 0 if none exists.
// No white space takes more than three bytes, and a part of a longer sequence decodes to none.
template <bool kAtEnd>
std::size_t space_length(std::string_view text) noexcept {
    for (std::size_t n = 1; n <= std::min<std::size_t>(text.size(), 3); ++n) {
        const wstring decoded = from_utf8(kAtEnd ? text.substr(text.size() - n) : text.substr(0, n));
        if (decoded.size() == 1 && is_space(decoded.front()))
            return n;
    }
    return 0;
}

} // namespace

wstring_view trim_left(wstring_view text) noexcept {
    while (!text.empty() && is_space(text.front()))
        text.remove_prefix(1);
    return text;
}

wstring_view trim_right(wstring_view text) noexcept {
    while (!text.empty() && is_space(text.back()))
        text.remove_suffix(1);
    return text;
}

wstring_view trim_all(wstring_view text) noexcept {
    return trim_left(trim_right(text));
}

std::string_view trim_left(std::string_view text) noexcept {
    while (const std::size_t length = space_length<false>(text))
        text.remove_prefix(length);
    return text;
}

std::string_view trim_right(std::string_view text) noexcept {
    while (const std::size_t length = space_length<true>(text))
        text.remove_suffix(length);
    return text;
}

std::string_view trim_all(std::string_view text) noexcept {
    return trim_left(trim_right(text));
}

} // namespace core
