// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

namespace core::limbs {

/// out = a × b by number-theoretic transforms, in time n × log n; out.size() == a.size() + b.size(). A factor
/// is transformed once when a and b are the same array.
void multiply_by_transform(std::span<Word> out, std::span<const Word> a, std::span<const Word> b);

} // namespace core::limbs
