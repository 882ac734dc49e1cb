// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/unit_search.h"

#include <algorithm>
#include <bit>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace core {

/// How many positions are looked at together.
inline constexpr std::size_t kPairBlock = 8;

/// Which of the first `count` positions, 16 at the most, have the pair, as bits. Classes have `kCases`
/// different units at the most.
template <std::size_t kCases>
[[nodiscard]] unsigned pair_positions(const UnitPair& pair, const wchar* at, std::size_t count) noexcept {
    const auto member = [](const UnitClass& units, wchar c) {
        bool found = false; // without a branch, which the processor would guess wrong
        for (std::size_t i = 0; i < kCases; ++i)
            found |= c == units[i];
        return found;
    };
    unsigned positions = 0;
    for (std::size_t i = 0; i < count; ++i)
        positions |= unsigned{member(pair.near, at[i]) && member(pair.far, at[i + pair.distance])} << i;
    return positions;
}

/// The positions of a pair in two blocks at a time, for every processor.
template <std::size_t kCases>
class PlainPairBlocks {
  public:
    explicit PlainPairBlocks(const UnitPair& pair) noexcept : pair_(pair) {}

    /// The positions in both blocks as bits, those of `first` in the lower half.
    [[nodiscard]] unsigned positions(const wchar* first, const wchar* second) const noexcept {
        return pair_positions<kCases>(pair_, first, kPairBlock) |
               pair_positions<kCases>(pair_, second, kPairBlock) << kPairBlock;
    }

  private:
    const UnitPair& pair_;
};

#if defined(__SSE2__)
/// The same by vectors of eight units.
template <std::size_t kCases>
class VectorPairBlocks {
  public:
    explicit VectorPairBlocks(const UnitPair& pair) noexcept : distance_(pair.distance) {
        for (std::size_t i = 0; i < kCases; ++i) {
            near_[i] = _mm_set1_epi16(static_cast<short>(pair.near[i]));
            far_[i] = _mm_set1_epi16(static_cast<short>(pair.far[i]));
        }
    }

    [[nodiscard]] unsigned positions(const wchar* first, const wchar* second) const noexcept {
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(block(first), block(second))));
    }

  private:
    using Vectors = __m128i[kCases];

    static __m128i members(const Vectors& cases, const wchar* at) noexcept {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        __m128i found = _mm_cmpeq_epi16(units, cases[0]);
        for (std::size_t i = 1; i < kCases; ++i)
            found = _mm_or_si128(found, _mm_cmpeq_epi16(units, cases[i]));
        return found;
    }
    [[nodiscard]] __m128i block(const wchar* at) const noexcept {
        return _mm_and_si128(members(near_, at), members(far_, at + distance_));
    }

    Vectors near_;
    Vectors far_;
    std::size_t distance_;
};
template <std::size_t kCases>
using PairBlocks = VectorPairBlocks<kCases>;
#else
template <std::size_t kCases>
using PairBlocks = PlainPairBlocks<kCases>;
#endif

/// find_pair() for classes of `kCases` different units at the most, by one kind of blocks.
template <std::size_t kCases, template <std::size_t> class Blocks = PairBlocks>
[[nodiscard]] const wchar* search_pair(const UnitPair& pair, const wchar* at, std::size_t count) noexcept {
    if (count < kPairBlock) {
        const unsigned positions = pair_positions<kCases>(pair, at, count);
        return positions != 0 ? at + std::countr_zero(positions) : nullptr;
    }
    const Blocks<kCases> blocks(pair);
    const auto inTwo = [&](const wchar* first, const wchar* second) -> const wchar* {
        const unsigned positions = blocks.positions(first, second);
        if (positions == 0)
            return nullptr;
        const auto position = static_cast<std::size_t>(std::countr_zero(positions));
        return position < kPairBlock ? first + position : second + (position - kPairBlock);
    };
    constexpr auto kStep = static_cast<std::ptrdiff_t>(kPairBlock);
    const wchar* const last = at + (count - kPairBlock);
    for (; last - at >= kStep; at += 2 * kStep) {
        if (const wchar* const position = inTwo(at, at + kStep))
            return position;
    }
    // What is left fits into two blocks that overlap each other or what was searched already.
    return last - at > -kStep ? inTwo(std::min(at, last), last) : nullptr;
}

} // namespace core
