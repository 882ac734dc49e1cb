// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>

#include <charconv>
#include <limits>

namespace core::detail {
namespace {

constexpr bool is_radix(unsigned radix) noexcept {
    return radix >= 2 && radix <= 36;
}

// The value of a digit in any radix; a number above all of them for a unit that is not a digit.
unsigned digit_value(wchar c) noexcept {
    if (const int value = digit(c); value >= 0)
        return static_cast<unsigned>(value);
    if (c >= 'a' && c <= 'z')
        return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'Z')
        return static_cast<unsigned>(c - 'A') + 10;
    return 36;
}

} // namespace

std::string integer_to_text(Integer value, unsigned radix) {
    if (!is_radix(radix))
        return {};
    char digits[1 + std::numeric_limits<std::uint64_t>::digits];
    digits[0] = '-';
    char* const end =
        std::to_chars(digits + 1, std::end(digits), value.magnitude, static_cast<int>(radix)).ptr;
    return std::string(digits + (value.negative ? 0 : 1), end);
}

std::optional<Integer> integer_from_text(wstring_view text, unsigned radix) noexcept {
    Integer integer;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        integer.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (text.empty() || !is_radix(radix))
        return std::nullopt;
    for (const wchar c : text) {
        const unsigned value = digit_value(c);
        constexpr auto kLargest = std::numeric_limits<std::uint64_t>::max();
        if (value >= radix || integer.magnitude > (kLargest - value) / radix)
            return std::nullopt;
        integer.magnitude = integer.magnitude * radix + value;
    }
    return integer;
}

std::optional<Integer> integer_from_text(std::string_view text, unsigned radix) {
    return integer_from_text(from_utf8(text), radix);
}

} // namespace core::detail
