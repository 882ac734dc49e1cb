// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/exchange/tables/table_text.h"
#include "host/terminal/console.h"

#include <core/values/generic_value.h>

namespace host::script {

/// Of a longer table, Print shows this many rows.
inline constexpr std::size_t kPrintedRows = 20;

/// Writes a value and a line's end: a value table, tree or list as an aligned table, of which at most `most`
/// rows are shown, anything else as its presentation. Where the console wants JSON, the value as JSON, whole.
void print_value(const core::GenericValue& value, Console& console, std::size_t most = kPrintedRows);

} // namespace host::script
