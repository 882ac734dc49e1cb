// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

namespace core::limbs {

/// Words of the quotient from which multiplication by the reciprocal beats the schoolbook.
inline constexpr std::size_t kNewtonQuotient = 64;
/// Limbs of the longest divisor for which the remainder of the schoolbook stays on the stack, in 1024 bytes
/// at most. Multiplication by the reciprocal takes its working area from the heap.
inline constexpr std::size_t kStackDivisor = 255;

/// Divides in place by schoolbook: q = ⌊u / v⌋ in q.size() == u.size() − v.size() words, the low words of u
/// become the remainder. v has at least two words, the top one not zero, and the top v.size() words of u are
/// below v.
void divide_schoolbook(std::span<Word> q, std::span<Word> u, std::span<const Word> v) noexcept;

} // namespace core::limbs
