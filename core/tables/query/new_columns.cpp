// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/new_columns.h"

#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {

void NewColumns::add(ColumnInfo info, CellColumn cells) {
    if (!is_valid_name(info.name))
        throw_error<ContextException>(messages::kBadColumnName, {info.name});
    if (!names_.insert(info.name).second)
        throw_error<ContextException>(messages::kColumnTwice, {info.name});
    const auto id = static_cast<ColumnId>(content_.columns.size());
    content_.columns.push_back(std::make_unique<TableColumn>(id, std::move(info)));
    content_.columns.back()->cells = std::move(cells);
}

} // namespace core
