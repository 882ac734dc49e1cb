// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

namespace core::limbs {

/// Words from which multiplication by the reciprocal is used: of the quotient, where it beats the schoolbook;
/// of the divisor, where the remainder of the schoolbook no longer fits the stack (1024 bytes).
inline constexpr std::size_t kNewtonQuotient = 64;
inline constexpr std::size_t kNewtonDivisor = 128;

/// Divides in place by schoolbook: q = ⌊u / v⌋ in q.size() == u.size() − v.size() words, u becomes the
/// remainder. v has at least two words, the top one not zero, and the top v.size() words of u are below v.
void divide_schoolbook(std::span<Word> q, std::span<Word> u, std::span<const Word> v) noexcept;

} // namespace core::limbs
