// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>

#include <vector>

namespace core {

/// A column as a list of columns names it.
struct ListedColumn {
    wstring name;
    TypeDomain domain; ///< empty where no type is given
};

/// Reads a list of columns, as "Day Date, Price Number(10,2), Name String(20)", with the names of types in
/// either language. Throws ContextException: "IDS_COLUMN_LIST_ITEM" for an item that is malformed,
/// "IDS_VT_COLUMNCODE_ERROR" for a name that is not valid, "IDS_VT_COLUMNS_NOT_UNIQUE" for one that comes
/// twice.
[[nodiscard]] std::vector<ListedColumn> read_column_list(wstring_view list);

} // namespace core
