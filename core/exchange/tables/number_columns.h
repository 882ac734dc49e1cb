// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/table_text.h>

#include <vector>

namespace core {

/// For each column whether its filled cells are all numbers, which stand right.
[[nodiscard]] std::vector<bool> number_columns(const TableView& view);

} // namespace core
