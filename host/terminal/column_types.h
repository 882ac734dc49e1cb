// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/value_columns.h>

namespace host {

/// Returns the types of a description by their names, with their qualifiers as lists of columns have them, as
/// in "Number(10,2), String(20)"; empty for one that admits every value. `alias` is the language of names.
[[nodiscard]] core::wstring type_text(const core::TypeDomain& domain, int alias);

/// Returns a table with a row for each column: its name and its types. `alias` is the language of titles and
/// types.
[[nodiscard]] core::Value table_of_columns(const core::IValueColumns& columns, int alias);

} // namespace host
