// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// The bytes of the compact form, which docs/compact-format.md describes.
namespace core::detail {

/// The first byte of a token. Bytes below `shortString` are the numbers 0 to 127; from there up to `end` they
/// are strings of 0 to 63 units of one byte each.
enum class CompactToken : std::uint8_t {
    shortString = 0x80,
    end = 0xC0, // of a list
    begin,      // of a list
    undefined,
    null,
    no,  // Boolean
    yes, // Boolean
    positive,
    negative,
    decimal,
    digits,
    narrowString, // one byte a unit
    wideString,   // two bytes a unit
    bytes,
    days,    // dates, in the largest unit that is exact
    seconds, //
    ticks,   //
    newId,
    knownId,
    type,
    object,
    real,
    packed,
};

/// How many of the first ids are remembered: an object of a class that came before costs two bytes.
inline constexpr std::size_t kKnownIds = 64;
/// The most bytes that a number of seven bits a byte takes up.
inline constexpr std::size_t kVarintBytes = 10;
/// The bytes of an id.
inline constexpr std::size_t kIdBytes = 16;

/// Writes eight bytes, the lowest first, and returns the end.
inline std::byte* store_word(std::byte* at, std::uint64_t word) noexcept {
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    std::memcpy(at, &word, sizeof word);
    return at + sizeof word;
}

/// Reads eight bytes, the lowest first.
[[nodiscard]] inline std::uint64_t load_word(const std::byte* at) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    return word;
}

/// Writes a unit, the low byte first.
inline void store_unit(std::byte* at, wchar unit) noexcept {
    at[0] = static_cast<std::byte>(unit & 0xFF);
    at[1] = static_cast<std::byte>(unit >> 8);
}

/// Reads a unit, the low byte first.
[[nodiscard]] inline wchar load_unit(const std::byte* at) noexcept {
    return static_cast<wchar>(std::to_integer<unsigned>(at[0]) | std::to_integer<unsigned>(at[1]) << 8);
}

/// Writes an id in the order of its text, and returns the end.
inline std::byte* store_id(std::byte* at, const GUID& id) noexcept {
    const auto put = [&at](std::uint32_t group, int bytes) {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            *at++ = static_cast<std::byte>(group >> shift & 0xFF);
    };
    put(id.data1, 4);
    put(id.data2, 2);
    put(id.data3, 2);
    for (const std::uint8_t byte : id.data4)
        put(byte, 1);
    return at;
}

/// Reads an id.
[[nodiscard]] inline GUID load_id(const std::byte* at) noexcept {
    const auto get = [&at](int bytes) {
        std::uint32_t group = 0;
        for (; bytes > 0; --bytes)
            group = group << 8 | std::to_integer<std::uint32_t>(*at++);
        return group;
    };
    GUID id;
    id.data1 = get(4);
    id.data2 = static_cast<std::uint16_t>(get(2));
    id.data3 = static_cast<std::uint16_t>(get(2));
    for (std::uint8_t& byte : id.data4)
        byte = static_cast<std::uint8_t>(get(1));
    return id;
}

/// Folds the sign into the lowest bit: small magnitudes become small numbers.
[[nodiscard]] constexpr std::uint64_t zigzag(std::int64_t value) noexcept {
    return static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63);
}

/// Undoes zigzag().
[[nodiscard]] constexpr std::int64_t unzigzag(std::uint64_t bits) noexcept {
    return static_cast<std::int64_t>(bits >> 1 ^ (0 - (bits & 1)));
}

} // namespace core::detail
