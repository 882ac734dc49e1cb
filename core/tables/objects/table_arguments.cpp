// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_arguments.h"

#include "core/tables/data/unknown_column.h"
#include "core/tables/objects/column_objects.h"
#include "core/tables/query/expression_parser.h"

#include <core/context/arguments.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/tables/terms.h>
#include <core/values/errors.h>

#include <algorithm>
#include <numeric>

namespace core {
namespace {

bool is_term(wstring_view word, Term term) noexcept {
    return compare_nocase(word, wstring_view(term[kEnglish])) == 0 ||
           compare_nocase(word, wstring_view(term[kRussian])) == 0;
}

void add_column(ColumnList& columns, const TableData& data, wstring_view name) {
    const std::size_t column = column_named(data, name);
    if (std::find(columns.begin(), columns.end(), column) != columns.end())
        throw_error<ContextException>(messages::kColumnTwice, {wstring(name)});
    columns.push_back(column);
}

} // namespace

RowId row_object_argument(const TableData& data, const Value& argument, int param) {
    const auto object = object_argument<IRowObject>(argument, param);
    const RowHandle& handle = object->handle();
    if (&handle.data() != &data)
        throw_error<ContextException>(messages::kUnknownRow);
    return handle.row();
}

std::size_t row_argument(const TableData& data, RowId parent, const Value& argument, int param) {
    const RowOrder& order = data.rowsOf(parent);
    if (argument.kind() == ValueKind::number)
        return position_argument(argument, param, order.size());
    const RowId row = row_object_argument(data, argument, param);
    if (data.parentOf(row) != parent)
        throw_error<ContextException>(messages::kUnknownRow);
    return order.positionOf(row);
}

std::size_t column_named(const TableData& data, wstring_view name) {
    const auto column = data.findColumn(name);
    if (!column)
        throw_unknown_column(data, name);
    return *column;
}

std::size_t column_with_id(const TableData& data, ColumnId id) {
    const auto column = data.findColumn(id);
    if (!column)
        throw_error<ContextException>(messages::kUnknownColumn, {string_intto(id)});
    return *column;
}

std::size_t column_argument(const TableData& data, const Value& argument, int param) {
    if (const wstring_view* const name = argument.asString(); name != nullptr)
        return column_named(data, trim_all(*name));
    if (argument.kind() == ValueKind::number)
        return position_argument(argument, param, data.columnCount());
    const auto object = object_argument<IColumnObject>(argument, param);
    const TableHandle<TableColumn>& handle = object->handle();
    const TableColumn* const column = handle.part();
    if (column == nullptr || &handle.data() != &data)
        throw_error<ContextException>(messages::kUnknownColumn,
                                      {column != nullptr ? column->info.name : handle.lastName()});
    return data.positionOf(*column);
}

ColumnList column_list_argument(const TableData& data, const Value& argument, int param, BlankList blank) {
    const std::vector<wstring_view> items = list_argument(argument, param);
    ColumnList columns;
    if (blank == BlankList::noColumn && items.size() == 1 && items.front().empty())
        return columns;
    for (const wstring_view item : items) {
        if (item.empty())
            parameter_value_mismatch(param);
        add_column(columns, data, item);
    }
    return columns;
}

ColumnList optional_columns_argument(const TableData& data, const Value& argument, int param) {
    if (!argument.isUndefined())
        return column_list_argument(data, argument, param);
    ColumnList columns(data.columnCount());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    return columns;
}

std::vector<const TableColumn*> keys_argument(const TableData& data, Operands& operands,
                                              const Value& argument, int param) {
    if (const wstring list(text_argument(argument, param)); has_expression(list))
        return operands.keys({&list, 1});
    std::vector<const TableColumn*> columns;
    for (const std::size_t position : column_list_argument(data, argument, param, BlankList::noColumn))
        columns.push_back(&data.column(position));
    return columns;
}

std::vector<SortItem> sort_items(wstring_view text, int param) {
    std::vector<SortItem> items;
    for (const wstring_view item : string_tokenize(text, u",", EmptyTokens::keep)) {
        const std::vector<wstring_view> words = string_tokenize(trim_all(item), u" ");
        if (words.empty())
            parameter_value_mismatch(param);
        const bool descending = words.size() == 2 && is_term(words[1], kOrderingDirectionDescTerm);
        const bool ascending = words.size() == 1 || is_term(words[1], kOrderingDirectionAscTerm);
        if (words.size() > 2 || (!descending && !ascending))
            throw_error<ContextException>("IDS_VT_SORT_ITEM", {wstring(trim_all(item))});
        items.push_back({words[0], descending});
    }
    return items;
}

SortOrder sort_argument(const TableData& data, const Value& argument, int param) {
    const wstring_view list = text_argument(argument, param);
    if (has_expression(list))
        return read_order(data, list);
    // The form of the list is checked before the names in it.
    ColumnList columns;
    SortOrder order;
    for (const SortItem& item : sort_items(list, param)) {
        add_column(columns, data, item.name);
        order.columns.push_back({&data.column(columns.back()).cells, item.descending});
    }
    return order;
}

void check_grouping(const TableData& data, const ColumnList& columns, const ColumnList& totals) {
    for (const std::size_t column : totals) {
        if (std::find(columns.begin(), columns.end(), column) != columns.end())
            throw_error<ContextException>(messages::kGroupedAndTotalled, {data.column(column).info.name});
    }
    if (columns.empty() && totals.empty())
        throw_error<ContextException>(messages::kGroupByNothing);
}

GroupingColumns grouping_arguments(const TableData& data, std::span<const GenericValue> arguments) {
    GroupingColumns grouping{column_list_argument(data, arguments[0], 0, BlankList::noColumn), {}};
    if (!arguments[1].isUndefined())
        grouping.totals = column_list_argument(data, arguments[1], 1, BlankList::noColumn);
    check_grouping(data, grouping.columns, grouping.totals);
    return grouping;
}

} // namespace core
