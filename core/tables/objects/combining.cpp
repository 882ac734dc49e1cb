// SPDX-License-Identifier: Apache-2.0
// The functions that make one table of two, and of a table its different rows, for C++ code.
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/table_parts.h"
#include "core/tables/query/join.h"
#include "core/tables/query/set_operations.h"

#include <core/context/arguments.h>
#include <core/tables/errors.h>
#include <core/tables/joins.h>
#include <core/tables/sets.h>
#include <core/values/errors.h>

#include <algorithm>
#include <numeric>

namespace core {
const TableData& own_table(IValueTableBaseRO& table, int param) {
    const TableData* const data = table_data_of(table);
    if (data == nullptr)
        parameter_type_mismatch(param);
    return *data;
}

InterfacePtr<IValueTable> join(IValueTableBaseRO& table, IValueTableBaseRO& other, wstring_view on,
                               const std::optional<wstring>& columns, JoinKind kind, const TableWork& work) {
    WorkWatch watch(work);
    const JoinRequest request{on, columns, kind};
    return table_of(join_tables(own_table(table, 0), own_table(other, 1), request, watch));
}

InterfacePtr<IValueTable> unite(IValueTableBaseRO& table, IValueTableBaseRO& other, EqualRows equal,
                                const TableWork& work) {
    WorkWatch watch(work);
    return table_of(unite_tables(own_table(table, 0), own_table(other, 1), equal, watch));
}

InterfacePtr<IValueTable> except(IValueTableBaseRO& table, IValueTableBaseRO& other, const TableWork& work) {
    WorkWatch watch(work);
    return table_of(compare_tables(own_table(table, 0), own_table(other, 1), RowsOfOther::excluded, watch));
}

InterfacePtr<IValueTable> intersect(IValueTableBaseRO& table, IValueTableBaseRO& other,
                                    const TableWork& work) {
    WorkWatch watch(work);
    return table_of(compare_tables(own_table(table, 0), own_table(other, 1), RowsOfOther::required, watch));
}

InterfacePtr<IValueTable> distinct(IValueTableBaseRO& table, const std::vector<wstring>& columns,
                                   const TableWork& work) {
    const TableData& data = own_table(table, 0);
    std::vector<std::size_t> positions(columns.empty() ? data.columnCount() : 0);
    std::iota(positions.begin(), positions.end(), std::size_t{0});
    for (const wstring& name : columns) {
        const std::size_t position = column_named(data, name);
        if (std::find(positions.begin(), positions.end(), position) != positions.end())
            throw_error<ContextException>(messages::kColumnTwice, {name});
        positions.push_back(position);
    }
    WorkWatch watch(work);
    return table_of(distinct_rows(data, positions, watch));
}

} // namespace core
