// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/unknown_column.h"

#include <core/context/arguments.h>
#include <core/tables/columns.h>
#include <core/tables/errors.h>

namespace core {
namespace {

[[noreturn]] void throw_unknown(const IValueColumns& columns, wstring_view name) {
    NearestName nearest(name);
    for (std::size_t i = 0; i < columns.count(); ++i)
        nearest.add(columns.get(i).name);
    throw_unknown_column(name, nearest);
}

} // namespace

std::int32_t ColumnKey::idIn(const IValueColumns& columns) const {
    if (kind_ == Kind::position)
        return columns.idAt(position_);
    if (kind_ == Kind::column) {
        if (!column_->isOf(columns))
            throw_error<ContextException>(messages::kUnknownColumn, {column_->name()});
        return column_->id();
    }
    const std::int32_t id = columns.find(name_.view());
    if (id < 0)
        throw_unknown(columns, name_.view());
    return id;
}

std::vector<std::int32_t> column_ids(const IValueColumns& columns, ColumnKeys keys) {
    std::vector<std::int32_t> ids;
    for (const ColumnKey& key : keys)
        ids.push_back(key.idIn(columns));
    return ids;
}

std::vector<VTFindParam> find_params(const IValueColumns& columns,
                                     std::initializer_list<CellEquals> conditions) {
    std::vector<VTFindParam> params;
    for (const CellEquals& condition : conditions)
        params.push_back({condition.column.idIn(columns), condition.value});
    return params;
}

std::int32_t NewColumn::addTo(IValueColumns& columns) const {
    return columns.insert(columns.count(), name_.view(), type_);
}

} // namespace core
