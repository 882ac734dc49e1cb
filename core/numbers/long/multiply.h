// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

namespace core::limbs {

/// Words in the shorter factor from which halves (Karatsuba) beat columns, and from
/// which transforms beat halves.
inline constexpr std::size_t kHalvesThreshold = 64;
inline constexpr std::size_t kTransformThreshold = 1000;

/// out = a × b, with out.size() == a.size() + b.size(), neither factor empty and no overlap. The
/// algorithm is chosen by size.
void multiply(std::span<Word> out, std::span<const Word> a, std::span<const Word> b);

} // namespace core::limbs
