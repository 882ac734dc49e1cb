// SPDX-License-Identifier: Apache-2.0
#include "core/streams/utf8_blocks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#ifdef __SSE2__ // what is beyond it, the processor is asked for when the program runs
#define CORE_UTF8_SHUFFLES
#include <immintrin.h>
#endif

namespace core::detail {
namespace {

/// What every processor can: ASCII by eight, and four characters of two bytes at a time.
void decode_by_words(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out) noexcept {
    while (end - at >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at, 8);
        if ((word & 0x8080808080808080U) == 0) {
            std::copy_n(at, 8, out);
            at += 8;
            out += 8;
            continue;
        }
        for (int i = 0; i < 4; ++i) {
            if (*at < 0x80) {
                *out++ = *at++;
            } else if (at[0] >= 0xC2 && at[0] < 0xE0 && (at[1] & 0xC0) == 0x80) {
                *out++ = static_cast<wchar>((at[0] & 0x1F) << 6 | (at[1] & 0x3F));
                at += 2;
            } else {
                return;
            }
        }
    }
}

/// ASCII by four.
void encode_by_words(const wchar*& at, const wchar* end, std::uint8_t*& out) noexcept {
    for (std::uint64_t four = 0; end - at >= 4; at += 4, out += 4) {
        std::memcpy(&four, at, sizeof four);
        if ((four & 0xFF80FF80FF80FF80U) != 0)
            return;
        std::copy_n(at, 4, out);
    }
}

#ifdef CORE_UTF8_SHUFFLES

/// For each set of units among eight that are kept: the shuffle that brings them together.
struct Shuffle {
    alignas(16) std::array<std::uint8_t, 16> bytes{};
};
constexpr std::array<Shuffle, 256> kShuffles = [] {
    std::array<Shuffle, 256> all{};
    for (unsigned kept = 0; kept < 256; ++kept) {
        std::size_t place = 0;
        for (unsigned unit = 0; unit < 8; ++unit) {
            if ((kept >> unit & 1U) == 0)
                continue;
            all[kept].bytes[place++] = static_cast<std::uint8_t>(2 * unit);
            all[kept].bytes[place++] = static_cast<std::uint8_t>(2 * unit + 1);
        }
    }
    return all;
}();

/// Sixteen bytes a step: each byte gets the unit that a character ending in it would have, and the units of
/// bytes that end none are squeezed out.
__attribute__((target("ssse3,popcnt"))) void
decode_by_shuffles(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out) noexcept {
    const auto bits = [](__m128i lanes) __attribute__((target("ssse3,popcnt"))) {
        return static_cast<unsigned>(_mm_movemask_epi8(lanes));
    };
    const __m128i zero = _mm_setzero_si128();
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const unsigned high = bits(bytes);
        auto* const to = reinterpret_cast<__m128i*>(out);
        if (high == 0) {
            _mm_storeu_si128(to, _mm_unpacklo_epi8(bytes, zero));
            _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(bytes, zero));
            at += 16;
            out += 16;
            continue;
        }
        const __m128i follows = _mm_cmplt_epi8(bytes, _mm_set1_epi8(-64));             // 0x80 to 0xBF
        const __m128i leads = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(-63)), // 0xC2 to 0xDF
                                            _mm_cmplt_epi8(bytes, _mm_set1_epi8(-32)));
        const unsigned leading = bits(leads);
        const unsigned following = bits(follows);
        if ((leading | following) != high || following != (leading << 1 & 0xFFFF))
            return;
        // Of the byte before, the low five bits; none before an ASCII byte.
        const __m128i before =
            _mm_and_si128(_mm_and_si128(_mm_slli_si128(bytes, 1), _mm_set1_epi8(0x1F)), follows);
        const __m128i low = _mm_and_si128(
            bytes, _mm_or_si128(_mm_andnot_si128(follows, _mm_set1_epi8(0x7F)), _mm_set1_epi8(0x3F)));
        const __m128i first =
            _mm_or_si128(_mm_unpacklo_epi8(low, zero), _mm_slli_epi16(_mm_unpacklo_epi8(before, zero), 6));
        const __m128i second =
            _mm_or_si128(_mm_unpackhi_epi8(low, zero), _mm_slli_epi16(_mm_unpackhi_epi8(before, zero), 6));
        const unsigned kept = ~leading & 0xFFFF;
        const auto shuffle = [](unsigned set) __attribute__((target("ssse3,popcnt"))) {
            return _mm_load_si128(reinterpret_cast<const __m128i*>(kShuffles[set].bytes.data()));
        };
        _mm_storeu_si128(to, _mm_shuffle_epi8(first, shuffle(kept & 0xFF)));
        out += _mm_popcnt_u32(kept & 0xFF);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(second, shuffle(kept >> 8)));
        out += _mm_popcnt_u32(kept >> 8);
        at += 16 - (leading >> 15); // a character that is cut comes again
    }
}

/// For each set of units among eight that take one byte: the shuffle that drops the second bytes of those.
constexpr std::array<Shuffle, 256> kSqueezes = [] {
    std::array<Shuffle, 256> all{};
    for (unsigned single = 0; single < 256; ++single) {
        std::size_t place = 0;
        for (unsigned unit = 0; unit < 8; ++unit) {
            all[single].bytes[place++] = static_cast<std::uint8_t>(2 * unit);
            if ((single >> unit & 1U) == 0)
                all[single].bytes[place++] = static_cast<std::uint8_t>(2 * unit + 1);
        }
    }
    return all;
}();

/// Eight units a step: each gets two bytes, and the second bytes of ASCII are squeezed out.
__attribute__((target("ssse3,popcnt"))) void encode_by_shuffles(const wchar*& at, const wchar* end,
                                                                std::uint8_t*& out) noexcept {
    const __m128i zero = _mm_setzero_si128();
    const auto lanes = [](unsigned unit) __attribute__((target("ssse3,popcnt"))) {
        return _mm_set1_epi16(static_cast<std::int16_t>(unit));
    };
    const wchar* from = at;
    std::uint8_t* to = out;
    for (; end - from >= 8; from += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i ascii = _mm_cmpeq_epi16(_mm_and_si128(units, lanes(0xFF80)), zero);
        const auto single = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(ascii, zero)));
        if (single == 0xFF) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(units, units));
            to += 8;
            continue;
        }
        const __m128i fit = _mm_cmpeq_epi16(_mm_and_si128(units, lanes(0xF800)), zero);
        if (_mm_movemask_epi8(fit) != 0xFFFF)
            break;
        const __m128i low = _mm_slli_epi16(_mm_and_si128(units, lanes(0x3F)), 8);
        const __m128i two = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(units, 6), low), lanes(0x80C0));
        const __m128i bytes = _mm_or_si128(_mm_and_si128(ascii, units), _mm_andnot_si128(ascii, two));
        const __m128i shuffle =
            _mm_load_si128(reinterpret_cast<const __m128i*>(kSqueezes[single].bytes.data()));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(bytes, shuffle));
        to += 16 - _mm_popcnt_u32(single);
    }
    at = from;
    out = to;
}

bool has_shuffles() noexcept {
    static const bool has = __builtin_cpu_supports("ssse3") != 0 && __builtin_cpu_supports("popcnt") != 0;
    return has;
}

#endif

} // namespace

void decode_short(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out) noexcept {
#ifdef CORE_UTF8_SHUFFLES
    if (has_shuffles())
        decode_by_shuffles(at, end, out);
#endif
    decode_by_words(at, end, out);
}

void encode_short(const wchar*& at, const wchar* end, std::uint8_t*& out) noexcept {
#ifdef CORE_UTF8_SHUFFLES
    if (has_shuffles())
        return encode_by_shuffles(at, end, out);
#endif
    encode_by_words(at, end, out);
}

} // namespace core::detail
