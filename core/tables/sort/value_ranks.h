// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_range.h"

#include <core/values/value.h>

namespace core {

/// The place of each chosen value, in the row that they are chosen in, in the order of values
/// (compare_values), counted from 0; equal ones have equal places. What comparing them needs, the collation
/// keys of texts above all, is made once a value.
[[nodiscard]] std::vector<std::uint32_t> rank_values(std::span<const Value> values, RowRange chosen);

} // namespace core
