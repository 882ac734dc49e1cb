// SPDX-License-Identifier: Apache-2.0
#include "core/strings/unit_search.h"

#include <algorithm>
#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace core {
namespace {

constexpr std::size_t kBlock = 8;

template <std::size_t kCases>
bool is_member(const UnitClass& units, wchar c) noexcept {
    bool member = false;
    for (std::size_t i = 0; i < kCases; ++i)
        member |= c == units[i];
    return member;
}

/// The search for classes of `kCases` different units at the most.
template <std::size_t kCases>
class PairSearch {
  public:
    explicit PairSearch(const UnitPair& pair) noexcept : pair_(pair) {
#if defined(__SSE2__)
        for (std::size_t i = 0; i < kCases; ++i) {
            near_[i] = _mm_set1_epi16(static_cast<short>(pair.near[i]));
            far_[i] = _mm_set1_epi16(static_cast<short>(pair.far[i]));
        }
#endif
    }

    const wchar* find(const wchar* at, std::size_t count) const noexcept {
        if (count < kBlock) {
            const unsigned places = few(at, count);
            return places != 0 ? at + std::countr_zero(places) : nullptr;
        }
        const wchar* const last = at + count - kBlock;
        for (; last - at >= std::ptrdiff_t{kBlock}; at += 2 * kBlock)
            if (const wchar* const place = inTwo(at, at + kBlock))
                return place;
        // What is left fits into two blocks that overlap each other or what was searched already.
        return last - at > -std::ptrdiff_t{kBlock} ? inTwo(std::min(at, last), last) : nullptr;
    }

  private:
    /// The places among the first `count` as bits.
    unsigned few(const wchar* at, std::size_t count) const noexcept {
        unsigned places = 0;
        for (std::size_t i = 0; i < count; ++i)
            places |= unsigned{is_member<kCases>(pair_.near, at[i]) &&
                               is_member<kCases>(pair_.far, at[i + pair_.distance])}
                      << i;
        return places;
    }

    /// The first place in two blocks, of which the second is the later one.
    const wchar* inTwo(const wchar* first, const wchar* second) const noexcept {
        const unsigned places = twoBlocks(first, second);
        if (places == 0)
            return nullptr;
        const int place = std::countr_zero(places);
        return place < int{kBlock} ? first + place : second + (place - int{kBlock});
    }

#if defined(__SSE2__)
    using Vectors = __m128i[kCases];

    static __m128i members(const Vectors& cases, const wchar* at) noexcept {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        __m128i found = _mm_cmpeq_epi16(units, cases[0]);
        for (std::size_t i = 1; i < kCases; ++i)
            found = _mm_or_si128(found, _mm_cmpeq_epi16(units, cases[i]));
        return found;
    }

    __m128i block(const wchar* at) const noexcept {
        return _mm_and_si128(members(near_, at), members(far_, at + pair_.distance));
    }
    unsigned twoBlocks(const wchar* first, const wchar* second) const noexcept {
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(block(first), block(second))));
    }

    Vectors near_;
    Vectors far_;
#else
    unsigned block(const wchar* at) const noexcept {
        return few(at, kBlock);
    }
#endif
    const UnitPair& pair_;
};

std::size_t cases_of(const UnitClass& units) noexcept {
    return units[2] != units[0] ? 4 : units[1] != units[0] ? 2 : 1;
}

} // namespace

const wchar* find_pair(const UnitPair& pair, const wchar* at, std::size_t count) noexcept {
    const std::size_t cases = std::max(cases_of(pair.near), cases_of(pair.far));
    if (cases == 1)
        return PairSearch<1>(pair).find(at, count);
    if (cases == 2)
        return PairSearch<2>(pair).find(at, count);
    return PairSearch<4>(pair).find(at, count);
}

} // namespace core
