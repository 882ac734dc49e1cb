// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

#include <core/strings/nearest.h>

namespace core {

/// Throws ContextException ("IDS_VT_UNKNOWN_COLUMN_ERROR") for a name that no column has. Its text names the
/// nearest one, if one is near.
[[noreturn]] void throw_unknown_column(const TableData& data, wstring_view name);
/// The same, where `nearest` has looked for the name among the columns.
[[noreturn]] void throw_unknown_column(wstring_view name, const NearestName& nearest);

} // namespace core
