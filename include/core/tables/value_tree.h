// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

/// The value tree: rows of values under named columns, each of which may have rows below it. Scripts know it
/// as "ValueTree".
namespace core {

/// The class id of value trees, by which a stored tree is made again.
inline constexpr GUID kValueTreeClass = "97f56523-60eb-47da-b476-44668f1fa86f"_guid;
/// The type id of value trees.
inline constexpr GUID kValueTreeType = "8e826792-4cd6-48d5-9b7f-db068bd5bccb"_guid;

/// Returns a new tree without columns and rows.
[[nodiscard]] CORE_API GenericValue create_value_tree();

} // namespace core
