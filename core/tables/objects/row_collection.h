// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/row_objects.h"
#include "core/tables/objects/table_expressions.h"
#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/table_summaries.h"
#include "core/tables/query/row_search.h"
#include "core/tables/shape/added_rows.h"

#include <core/collections/terms.h>
#include <core/collections/value_array.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/context/iteration.h>
#include <core/tables/terms.h>

#include <algorithm>
#include <array>

namespace core {

/// Reads a filter from a structure of column names and wanted values; the values are borrowed from it.
[[nodiscard]] std::vector<RowCondition> filter_argument(const TableData& data, const Value& argument,
                                                        int param);
/// Returns the values of an array.
[[nodiscard]] std::vector<Value> array_argument(const Value& argument, int param);
[[nodiscard]] GenericValue array_of_rows(TableData& data, std::span<const RowId> rows);

[[nodiscard]] GenericValue find_row(TableData& data, RowId parent, bool subordinates, const Value& value,
                                    const Value& columns);
/// Sorts the rows below a parent, and those below them if `subordinates` says so. The comparison may be null.
void sort_rows(TableData& data, RowId parent, bool subordinates, std::span<const SortColumn> columns,
               ICompareValues* comparison);
/// The same by a column list and a comparison object or Undefined: the arguments 0 and `comparisonParam`.
void sort_rows(TableData& data, RowId parent, bool subordinates, const Value& columns,
               const Value& comparison, int comparisonParam);
/// Returns the cells of a column in the rows below a parent.
[[nodiscard]] std::vector<Value> column_values(const TableData& data, RowId parent, std::size_t column);

/// The methods 0 to 13, and AddRow, that a value table and the row collections of a value tree share. `T` has
/// data() and parent(). With T::kHierarchical, four methods have a parameter that says whether subordinate
/// rows are included.
template <class T, class... Is>
class RowCollection : public ScriptObject<T, IValueCollection, Is...> {
  public:
    InterfacePtr<IValueEnum> enumerate() override { return walk_rows(data(), parent()); }

  protected:
    ~RowCollection() = default;

    [[nodiscard]] static constexpr std::array<Method<T>, 14> rowMethods() noexcept;

    GenericValue callAddRow(std::span<GenericValue> arguments) {
        return inserted(rows().size(), fitted_cells(data(), arguments));
    }

  private:
    [[nodiscard]] T& self() noexcept { return static_cast<T&>(*this); }
    [[nodiscard]] TableData& data() noexcept { return self().data(); }
    [[nodiscard]] RowId parent() { return self().parent(); }
    [[nodiscard]] const RowOrder& rows() { return data().rowsOf(parent()); }
    [[nodiscard]] static bool subordinates(std::span<GenericValue> arguments, int param) {
        if constexpr (T::kHierarchical)
            return flag_argument(arguments[static_cast<std::size_t>(param)], param);
        return false;
    }

    /// The object of the row is made first: without memory for it, no row is inserted. The cells fit.
    GenericValue inserted(std::size_t position, std::span<const Value> cells = {}) {
        GenericValue row = row_value(data(), data().nextRow());
        data().insertRow(parent(), position, cells, CellSource::stored);
        return row;
    }

    GenericValue callCount(std::span<GenericValue>) { return rows().size(); }
    GenericValue callIndexOf(std::span<GenericValue> arguments) {
        if (arguments[0].kind() == ValueKind::number)
            parameter_type_mismatch(0);
        return row_argument(data(), parent(), arguments[0], 0);
    }
    GenericValue callAdd(std::span<GenericValue>) { return inserted(rows().size()); }
    GenericValue callInsert(std::span<GenericValue> arguments) {
        const std::size_t position = position_argument(arguments[0], 0, rows().size(), IndexBound::insertion);
        return inserted(position);
    }
    GenericValue callDelete(std::span<GenericValue> arguments) {
        if constexpr (!T::kHierarchical) {
            if (is_filter_argument(arguments[0])) {
                delete_filtered(data(), arguments[0], 0);
                return {};
            }
        }
        data().removeRow(parent(), row_argument(data(), parent(), arguments[0], 0));
        return {};
    }
    GenericValue callClear(std::span<GenericValue>) {
        data().removeRows(parent());
        return {};
    }
    GenericValue callMove(std::span<GenericValue> arguments) {
        const std::size_t from = row_argument(data(), parent(), arguments[0], 0);
        data().moveRow(parent(), from, target_argument(arguments[1], 1, from, rows().size()));
        return {};
    }
    GenericValue callFind(std::span<GenericValue> arguments) {
        return find_row(data(), parent(), subordinates(arguments, 2), arguments[0], arguments[1]);
    }
    GenericValue callFindRows(std::span<GenericValue> arguments) {
        return array_of_rows(data(),
                             filtered_rows(data(), parent(), subordinates(arguments, 1), arguments[0], 0));
    }
    GenericValue callTotal(std::span<GenericValue> arguments) {
        if constexpr (!T::kHierarchical)
            return filtered_total(data(), arguments[0], {});
        const RowList list(data(), parent(), subordinates(arguments, 1));
        return call_total(data(), list.range(), arguments[0]);
    }
    GenericValue callSort(std::span<GenericValue> arguments) {
        constexpr int kComparison = T::kHierarchical ? 2 : 1;
        sort_rows(data(), parent(), subordinates(arguments, 1), arguments[0], arguments[kComparison],
                  kComparison);
        return {};
    }
    GenericValue callLoadColumn(std::span<GenericValue> arguments) {
        const std::vector<Value> values = array_argument(arguments[0], 0);
        data().load(parent(), column_argument(data(), arguments[1], 1), values);
        return {};
    }
    GenericValue callUnloadColumn(std::span<GenericValue> arguments) {
        auto values = column_values(data(), parent(), column_argument(data(), arguments[0], 0));
        return Value(create_value_array(std::move(values)).template query<IValue>());
    }
    GenericValue callGet(std::span<GenericValue> arguments) {
        return row_value(data(), rows().at(position_argument(arguments[0], 0, rows().size())));
    }
};

namespace detail {

inline constexpr Param kFind[] = {kValueParam, kAnyColumnsParam, kDeepParam};
inline constexpr Param kFindRows[] = {named_param(kFilterName), kDeepParam};
inline constexpr Param kTotal[] = {named_param(kColumnName), kDeepParam};
inline constexpr Param kFlatSort[] = {kColumnsParam, kComparisonParam};
inline constexpr Param kHierarchicalSort[] = {kColumnsParam, kDeepParam, kComparisonParam};
inline constexpr Param kMoveRow[] = {named_param(kRowName), named_param(kOffsetName)};
inline constexpr Param kLoadColumn[] = {named_param(kArrayName), named_param(kColumnName)};

/// Joins two method tables.
template <class Entry, std::size_t first, std::size_t second>
[[nodiscard]] constexpr auto joined(const std::array<Entry, first>& a, const std::array<Entry, second>& b) {
    std::array<Entry, first + second> both{};
    std::copy(a.begin(), a.end(), both.begin());
    std::copy(b.begin(), b.end(), both.begin() + first);
    return both;
}

} // namespace detail

template <class T, class... Is>
constexpr std::array<Method<T>, 14> RowCollection<T, Is...>::rowMethods() noexcept {
    constexpr bool deep = T::kHierarchical;
    constexpr auto find = std::span<const Param>(detail::kFind).first(deep ? 3 : 2);
    constexpr auto findRows = std::span<const Param>(detail::kFindRows).first(deep ? 2 : 1);
    constexpr auto total = std::span<const Param>(detail::kTotal).first(deep ? 2 : 1);
    constexpr auto sort =
        deep ? std::span<const Param>(detail::kHierarchicalSort) : std::span<const Param>(detail::kFlatSort);
    return {{
        {kCollectTermCount, required(0), kFunction, &RowCollection::callCount, &kNumberType},
        {kCollectTermIndexOf, kOfRow, kFunction, &RowCollection::callIndexOf, &kNumberType},
        {kCollectTermAdd, required(0), kFunction, &RowCollection::callAdd, T::script.elements},
        {kCollectTermInsert, kOfIndex, kFunction, &RowCollection::callInsert, T::script.elements},
        {kCollectTermRemove, kOfRow, kProcedure, &RowCollection::callDelete},
        {kCollectTermClear, required(0), kProcedure, &RowCollection::callClear},
        {kCollectTermMove, detail::kMoveRow, kProcedure, &RowCollection::callMove},
        {kFindMethodTerm, find, kFunction, &RowCollection::callFind},
        {kFindRowsMethodTerm, findRows, kFunction, &RowCollection::callFindRows, &kValueArrayType},
        {kTotalMethodTerm, total, kFunction, &RowCollection::callTotal},
        {kSortMethodTerm, sort, kProcedure, &RowCollection::callSort},
        {kLoadColumnMethodTerm, detail::kLoadColumn, kProcedure, &RowCollection::callLoadColumn},
        {kUnloadColumnMethodTerm, kOfColumn, kFunction, &RowCollection::callUnloadColumn, &kValueArrayType},
        {kCollectTermGet, kOfIndex, kFunction, &RowCollection::callGet, T::script.elements},
    }};
}

} // namespace core
