// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// Ids that follow from names, so that nobody needs to mint and keep them.
namespace core {

namespace detail {

/// SHA-1 of bytes that come one by one, for the compiler to run. It is not meant to keep secrets.
class NameHash {
  public:
    constexpr void add(std::uint8_t byte) {
        block_[length_++ % 64] = byte;
        if (length_ % 64 == 0)
            mix();
    }
    constexpr std::array<std::uint32_t, 5> finish() {
        const std::uint64_t bits = std::uint64_t{length_} * 8;
        add(0x80);
        while (length_ % 64 != 56)
            add(0);
        for (int shift = 56; shift >= 0; shift -= 8)
            add(static_cast<std::uint8_t>(bits >> shift));
        return state_;
    }

  private:
    constexpr void mix() {
        std::uint32_t words[80] = {};
        for (std::size_t i = 0; i < 16; ++i) {
            for (std::size_t j = 0; j < 4; ++j)
                words[i] = words[i] << 8 | block_[4 * i + j];
        }
        for (std::size_t i = 16; i < 80; ++i)
            words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
        auto [a, b, c, d, e] = state_;
        for (std::size_t i = 0; i < 80; ++i) {
            const std::uint32_t chosen = i < 20   ? ((b & c) | (~b & d)) + 0x5A827999U
                                         : i < 40 ? (b ^ c ^ d) + 0x6ED9EBA1U
                                         : i < 60 ? ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDCU
                                                  : (b ^ c ^ d) + 0xCA62C1D6U;
            const std::uint32_t next = std::rotl(a, 5) + chosen + e + words[i];
            e = d;
            d = c;
            c = std::rotl(b, 30);
            b = a;
            a = next;
        }
        const std::uint32_t mixed[] = {a, b, c, d, e};
        for (std::size_t i = 0; i < 5; ++i)
            state_[i] += mixed[i];
    }

    std::array<std::uint32_t, 5> state_ = {0x67452301U, 0xEFCDAB89U, 0x98BADCFEU, 0x10325476U, 0xC3D2E1F0U};
    std::uint8_t block_[64] = {};
    std::size_t length_ = 0;
};

} // namespace detail

/// Returns the id of a name within the space that another id stands for: the name-based id of RFC 9562,
/// version 5, of the name in UTF-8. One space and one name always give one id. The name is well-formed
/// UTF-16.
[[nodiscard]] constexpr GUID name_guid(const GUID& space, wstring_view name) {
    detail::NameHash hash;
    for (int shift = 24; shift >= 0; shift -= 8)
        hash.add(static_cast<std::uint8_t>(space.data1 >> shift));
    for (const std::uint16_t group : {space.data2, space.data3}) {
        hash.add(static_cast<std::uint8_t>(group >> 8));
        hash.add(static_cast<std::uint8_t>(group & 0xFFU));
    }
    for (const std::uint8_t byte : space.data4)
        hash.add(byte);

    for (std::size_t i = 0; i < name.size(); ++i) {
        std::uint32_t point = name[i];
        if (point >= 0xD800 && point < 0xDC00) {
            ++i;
            point = 0x10000 + ((point - 0xD800) << 10) + (name[i] - 0xDC00U);
        }
        int continuations = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
        constexpr std::uint8_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
        hash.add(static_cast<std::uint8_t>(kLead[continuations] | point >> (6 * continuations)));
        while (continuations-- > 0)
            hash.add(static_cast<std::uint8_t>(0x80U | (point >> (6 * continuations) & 0x3FU)));
    }

    std::uint8_t bytes[16] = {};
    const auto words = hash.finish();
    for (std::size_t i = 0; i < 16; ++i)
        bytes[i] = static_cast<std::uint8_t>(words[i / 4] >> (24 - 8 * (i % 4)));
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x50U);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    return detail::guid_of(bytes);
}

} // namespace core
