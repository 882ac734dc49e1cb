// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console.h"
#include "host/table_text.h"

#include <core/tables/value_table.h>

#include <optional>
#include <vector>

/// Value tables and files of comma-separated values.
namespace host {

/// Whether a unit may stand between fields: any of ASCII but quotes and line breaks.
[[nodiscard]] bool is_csv_delimiter(core::wchar unit) noexcept;

/// The table that a file (or a pipe, or standard input for "-") holds, its cells Strings. Without `columns`
/// the first row holds the titles, of which names are made: what is no letter, digit or "_" becomes "_", and
/// a name that is taken gets a number. With `columns`, which are names, every row is one of the table.
///
/// ContextException, with file and line, for a row that is malformed or has another number of fields than
/// there are columns; FileException.
[[nodiscard]] core::InterfacePtr<core::IValueTable>
load_csv(Console& console, core::wstring_view file, char delimiter,
         const std::optional<std::vector<core::wstring>>& columns);

/// Replaces a file by the titles of the columns and the cells of the rows: the old content or the new one,
/// whole, stays on the disk. Undefined and Null are empty, numbers and dates are written as the brace list
/// has them, Booleans as True and False: in every language the same, and all of it reads back when the
/// columns are given their types again.
void save_csv(core::wstring_view file, const TableView& table, char delimiter);

} // namespace host
