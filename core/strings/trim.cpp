// SPDX-License-Identifier: Apache-2.0
#include <core/strings/char_class.h>
#include <core/strings/trim.h>

#include <algorithm>

namespace core {
namespace {

/// The unit that two or three bytes of UTF-8 spell; 0 for any other bytes.
wchar unit_of(std::string_view bytes) noexcept {
    const auto byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const auto follows = [byte](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
    if (bytes.size() == 2 && byte(0) >= 0xC2 && byte(0) < 0xE0 && follows(1))
        return static_cast<wchar>((byte(0) & 0x1FU) << 6U | (byte(1) & 0x3FU));
    if (bytes.size() != 3 || (byte(0) & 0xF0U) != 0xE0U || !follows(1) || !follows(2))
        return 0;
    const unsigned unit = (byte(0) & 0xFU) << 12U | (byte(1) & 0x3FU) << 6U | (byte(2) & 0x3FU);
    return unit >= 0x800 ? static_cast<wchar>(unit) : wchar{0};
}

/// The length of the white space character, in UTF-8, that `text` begins (or ends) with; 0 if none exists. No
/// white space takes more than three bytes.
template <bool kAtEnd>
std::size_t space_length(std::string_view text) noexcept {
    if (text.empty())
        return 0;
    const char edge = kAtEnd ? text.back() : text.front();
    if (static_cast<unsigned char>(edge) < 0x80)
        return is_space(static_cast<wchar>(edge)) ? 1 : 0;
    for (std::size_t n = 2; n <= std::min<std::size_t>(text.size(), 3); ++n) {
        const wchar unit = unit_of(kAtEnd ? text.substr(text.size() - n) : text.substr(0, n));
        if (unit != 0 && is_space(unit))
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
