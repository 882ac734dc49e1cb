// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/streams/find_unit.h"

/// The tests of find_unit() for the ends of lines.
namespace core::detail {

/// What ends a line everywhere.
struct EndsLine {
    static bool one(wchar unit) noexcept { return unit == u'\n' || unit == u'\r'; }
#ifdef __SSE2__
    static __m128i eight(__m128i units) noexcept {
        return _mm_or_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16(u'\n')),
                            _mm_cmpeq_epi16(units, _mm_set1_epi16(u'\r')));
    }
#endif
};

/// The same with U+2028 and U+2029.
struct EndsUnicodeLine {
    static bool one(wchar unit) noexcept { return EndsLine::one(unit) || (unit & ~1) == 0x2028; }
#ifdef __SSE2__
    static __m128i eight(__m128i units) noexcept {
        const __m128i even = _mm_and_si128(units, _mm_set1_epi16(~1));
        return _mm_or_si128(EndsLine::eight(units), _mm_cmpeq_epi16(even, _mm_set1_epi16(0x2028)));
    }
#endif
};

} // namespace core::detail
