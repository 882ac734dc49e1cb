// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/exchange/tables/table_text.h"
#include "host/terminal/console.h"

#include <core/context/context_def.h>
#include <core/tables/value_table.h>

#include <optional>
#include <vector>

namespace host::script {

/// The table in a CSV file, or in standard input for "-"; see read_csv_table(). FileException, too.
[[nodiscard]] core::InterfacePtr<core::IValueTable>
load_csv(Console& console, core::wstring_view file, char delimiter,
         const std::optional<std::vector<core::wstring>>& columns);
/// Replaces a file by a table as write_csv_table() writes it: the old content or the new one, whole, stays on
/// the disk. FileException.
void save_csv(core::wstring_view file, const TableView& table, char delimiter);

/// What scripts call to bring tables in and out. `console` must outlive the result.
[[nodiscard]] core::InterfacePtr<core::IContext_> create_table_functions(Console& console);

} // namespace host::script
