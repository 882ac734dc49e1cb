// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/streams/find_unit.h"

/// The searches that reading and writing strings spend their time in, eight units a
/// step where the processor can.
namespace core::detail {

/// What ends a run of plain units when reading: a quote, or U+FFFF, which is the end of the text.
struct EndsPlainRead {
    static bool one(wchar unit) noexcept { return unit == u'"' || unit == 0xFFFF; }
#ifdef __SSE2__
    static __m128i eight(__m128i units) noexcept {
        return _mm_or_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16(u'"')),
                            _mm_cmpeq_epi16(units, _mm_set1_epi16(-1)));
    }
#endif
};

/// What is not written as it is: a quote, a surrogate, or U+FFFF, which would end the text.
struct EndsPlainWrite {
    static bool one(wchar unit) noexcept {
        return unit == u'"' || (unit & 0xF800) == 0xD800 || unit == 0xFFFF;
    }
#ifdef __SSE2__
    static __m128i eight(__m128i units) noexcept {
        const __m128i top = _mm_srli_epi16(units, 11);
        return _mm_or_si128(EndsPlainRead::eight(units), _mm_cmpeq_epi16(top, _mm_set1_epi16(0xD800 >> 11)));
    }
#endif
};

/// Copies a text that is written as it is to `out` and returns the end; null when it is not.
[[nodiscard]] inline wchar* copy_plain(wchar* out, wstring_view text) noexcept {
    const wchar* at = text.data();
    const wchar* const end = at + text.size();
#ifdef __SSE2__
    for (; end - at >= 8; at += 8, out += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        if (_mm_movemask_epi8(EndsPlainWrite::eight(units)) != 0)
            return nullptr;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), units);
    }
#endif
    for (; at != end; ++at, ++out) {
        if (EndsPlainWrite::one(*at))
            return nullptr;
        *out = *at;
    }
    return out;
}

} // namespace core::detail
