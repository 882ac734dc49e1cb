// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_range.h"

#include <core/values/value.h>

namespace core {

/// Returns the rank of each chosen value, in the order in which they are chosen. Ranks count from 0 and
/// follow compare_values(); equal values have equal ranks. What a comparison needs, above all the collation
/// keys of texts, is made once for each value.
[[nodiscard]] std::vector<std::uint32_t> rank_values(std::span<const Value> values, RowRange chosen);

} // namespace core
