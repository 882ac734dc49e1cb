// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/values/value.h>

#include <cstddef>

namespace host {

/// Of a longer table, a console shows this many rows.
inline constexpr std::size_t kShownRows = 20;

/// Writes a value and a line's end: a value table, tree or list as an aligned table, of which at most `most`
/// rows are shown, columns as a table of their names and types, anything else as its presentation. Where the
/// console has a mode, tables are written in that, whole; where it wants JSON, every value.
void print_value(const core::Value& value, Console& console, std::size_t most = kShownRows);

} // namespace host
