// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/exchange/tables/table_text.h"

#include <core/values/value.h>

#include <optional>

namespace host {

enum class ViewFor {
    people,
    programs, ///< English names are the titles; a tree has a column Level in front, 0 for topmost rows
};

/// What a value table, a value tree or a value list shows; nothing for any other value. A tree's rows stand
/// below the row that they are below, a list's items as value, presentation and check mark. The view keeps
/// the value alive; it is to be used before the value changes.
[[nodiscard]] std::optional<TableView> table_view(const core::Value& value, ViewFor whom = ViewFor::people);

} // namespace host
