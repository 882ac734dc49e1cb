// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

namespace core::limbs {

/// Divides in place by multiplication with the reciprocal: q = ⌊u / v⌋ in q.size() == u.size() − v.size()
/// words, the low words of u become the remainder. The top word of v is at least half the base, and the top
/// v.size() words of u are below v.
void divide_newton(std::span<Word> q, std::span<Word> u, std::span<const Word> v);

} // namespace core::limbs
