// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#ifdef __SSE2__
#include <emmintrin.h>

#include <bit>
#endif

/// The search that reading and writing text spends its time in, eight units a step where the processor can.
namespace core::detail {

/// The first of the units in [at, end) that passes a test; `end` if none does.
template <class Test>
[[nodiscard]] inline const wchar* find_unit(const wchar* at, const wchar* end) noexcept {
#ifdef __SSE2__
    for (; end - at >= 8; at += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        if (const auto found = static_cast<unsigned>(_mm_movemask_epi8(Test::eight(units))); found != 0)
            return at + std::countr_zero(found) / 2;
    }
#endif
    while (at != end && !Test::one(*at))
        ++at;
    return at;
}

} // namespace core::detail
