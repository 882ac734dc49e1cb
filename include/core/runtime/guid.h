// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

namespace core {

/// A class id or interface id: 16 bytes in the usual layout. Equality is equality of all bytes; the order is
/// the order of the written form.
struct GUID {
    std::uint32_t data1 = 0;    ///< the first group of the written form
    std::uint16_t data2 = 0;    ///< the second group
    std::uint16_t data3 = 0;    ///< the third group
    std::uint8_t data4[8] = {}; ///< the last two groups, byte for byte

    friend bool operator==(const GUID& a, const GUID& b) noexcept {
        // Two words, the first of which differs in almost every failed comparison.
        std::uint64_t x[2];
        std::uint64_t y[2];
        std::memcpy(x, &a, sizeof x);
        std::memcpy(y, &b, sizeof y);
        return x[0] == y[0] && x[1] == y[1];
    }
    friend std::strong_ordering operator<=>(const GUID& a, const GUID& b) noexcept = default;
};
static_assert(sizeof(GUID) == 16);

/// The id of zeros, which names nothing.
inline constexpr GUID kNullGuid{};

namespace detail {

consteval unsigned hex_nibble(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A' + 10);
    throw "an id holds hexadecimal digits and hyphens only";
}

/// Whether a hyphen stands at index `i` of the written form.
constexpr bool is_guid_hyphen(std::size_t i) noexcept {
    return i == 8 || i == 13 || i == 18 || i == 23;
}
/// The id whose written form has these bytes in this order.
constexpr GUID guid_of(const std::uint8_t (&bytes)[16]) noexcept {
    GUID id;
    id.data1 = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
               bytes[3];
    id.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    id.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    for (std::size_t i = 0; i < 8; ++i)
        id.data4[i] = bytes[8 + i];
    return id;
}

} // namespace detail

inline namespace literals {

/// `"00000000-0000-0000-c000-000000000046"_guid`: a malformed id does not compile.
consteval GUID operator""_guid(const char* text, std::size_t length) {
    if (length != 36)
        throw "an id has 36 characters, 8-4-4-4-12";
    std::uint8_t bytes[16] = {};
    std::size_t nibble = 0;
    for (std::size_t i = 0; i < length; ++i) {
        if (detail::is_guid_hyphen(i)) {
            if (text[i] != '-')
                throw "the groups of an id are separated by hyphens";
            continue;
        }
        bytes[nibble / 2] = static_cast<std::uint8_t>(bytes[nibble / 2] * 16U + detail::hex_nibble(text[i]));
        ++nibble;
    }
    return detail::guid_of(bytes);
}

} // namespace literals

/// The length of the written form in code units.
inline constexpr std::size_t kGuidTextLength = 36;

/// Returns the written form of an id: 36 lowercase characters, without braces.
[[nodiscard]] CORE_API wstring to_string(const GUID& id);
/// Writes the 36 characters to `out`, without a terminator, and returns the address behind them.
CORE_API wchar* to_string(const GUID& id, wchar* out) noexcept;

/// Reads the 36-character form, hexadecimal digits of either case (the fullwidth letters too). Returns false
/// and sets the null id when the text is anything else.
[[nodiscard]] CORE_API bool from_string(wstring_view text, GUID& id) noexcept;

} // namespace core

template <>
struct std::hash<core::GUID> {
    std::size_t operator()(const core::GUID& id) const noexcept {
        std::uint64_t words[2];
        std::memcpy(words, &id, sizeof words);
        return static_cast<std::size_t>((words[0] ^ words[1]) * 0x9E3779B97F4A7C15ULL);
    }
};
