// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

#include <core/tables/value_tree.h>

#include <functional>

namespace core {

inline constexpr GUID kValueTreeRowType = "9751019a-3873-472b-927e-f7d61d64865b"_guid;

/// A new script object of a tree's row.
[[nodiscard]] GenericValue make_tree_row(TableData& data, RowId row);
/// Returns a new tree whose data `fill` has filled.
[[nodiscard]] InterfacePtr<IValueTree> make_value_tree(const std::function<void(TableData&)>& fill);
/// Returns the data of a tree, borrowed from it; null for a tree that is not one of this library.
[[nodiscard]] TableData* tree_data_of(IValueTree& tree);

} // namespace core
