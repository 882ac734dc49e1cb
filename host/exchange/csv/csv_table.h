// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/exchange/tables/table_text.h"

#include <core/streams/text_file.h>
#include <core/tables/value_table.h>

#include <optional>
#include <vector>

/// Value tables as comma-separated values.
namespace host {

/// Whether a unit may stand between fields: any of ASCII except quotes and line breaks.
[[nodiscard]] bool is_csv_delimiter(core::wchar unit) noexcept;

/// The table that `read` brings the bytes of, its cells Strings; messages call it `name`. Without `columns`
/// the first row holds the titles, from which it makes names: each character that is not a letter, a digit
/// or "_" becomes "_", and a name that is taken gets a number. With `columns`, which are names, every row is
/// one of the table.
///
/// ContextException, with name and line, for a row that is malformed or has another number of fields than
/// there are columns; what `read` throws passes through.
[[nodiscard]] core::InterfacePtr<core::IValueTable>
read_csv_table(const core::ByteReader& read, core::wstring_view name, char delimiter,
               const std::optional<std::vector<core::wstring>>& columns);

/// Writes the titles of the columns and the cells of the rows. Undefined and Null are empty, numbers and
/// dates are written as the brace list has them, Booleans as True and False: in every language the same, and
/// all of it reads back when the columns are given their types again.
void write_csv_table(core::wostream& out, const TableView& table, char delimiter);

} // namespace host
