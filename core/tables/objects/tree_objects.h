// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

namespace core {

inline constexpr GUID kValueTreeRowType = "9751019a-3873-472b-927e-f7d61d64865b"_guid;

/// A new script object of a tree's row.
[[nodiscard]] GenericValue make_tree_row(TableData& data, RowId row);

} // namespace core
