// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/shaping_methods.h"
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/tree_objects.h"
#include "core/tables/shape/tree_rows.h"

namespace core {

/// The methods of a value tree. `T` is the tree.
template <class T>
class TreeMethods {
  protected:
    ~TreeMethods() = default;

    [[nodiscard]] static constexpr std::array<Method<T>, 5> treeMethods() noexcept;

  private:
    [[nodiscard]] TableData& data() noexcept { return static_cast<T&>(*this).data(); }
    [[nodiscard]] IValueTree& self() noexcept { return static_cast<T&>(*this); }
    /// An object as a script's value.
    template <class I>
    [[nodiscard]] static GenericValue value(const InterfacePtr<I>& made) {
        return Value(made.template query<IValue>());
    }

    GenericValue callCopy(std::span<GenericValue> arguments) {
        const ColumnList columns = optional_columns_argument(data(), arguments[0], 0);
        const TableWork work;
        WorkWatch watch(work);
        return value(make_value_tree([&](TableData& tree) { copy_tree(data(), columns, tree, watch); }));
    }
    GenericValue callGroupBy(std::span<GenericValue> arguments) {
        const GroupingColumns grouping = grouping_arguments(data(), arguments);
        const TableWork work;
        WorkWatch watch(work);
        TableData fresh(data().owner(), true);
        group_tree(data(), grouping.columns, grouping.totals, fresh, watch);
        data().replace(fresh);
        return {};
    }
    GenericValue callTableByParent(std::span<GenericValue> arguments) {
        return value(table_by_parent(self(), text_argument(arguments[0], 0), text_argument(arguments[1], 1)));
    }
    GenericValue callTableByPath(std::span<GenericValue> arguments) {
        const wstring_view path = data().column(column_argument(data(), arguments[0], 0)).info.name;
        return value(table_by_path(self(), path, text_argument(arguments[1], 1)));
    }
    GenericValue callTableByLevel(std::span<GenericValue> arguments) {
        return value(table_by_level(self(), text_argument(arguments[0], 0)));
    }
};

template <class T>
constexpr std::array<Method<T>, 5> TreeMethods<T>::treeMethods() noexcept {
    using M = TreeMethods;
    return {{
        {kCopyMethodTerm, kOfAnyColumns, kFunction, &M::callCopy, &kValueTreeType},
        {kGroupByMethodTerm, kOfGroups, kProcedure, &M::callGroupBy},
        {kTableByParentMethodTerm, detail::kByParent, kFunction, &M::callTableByParent, &kValueTableType},
        {kTableByPathMethodTerm, detail::kByPath, kFunction, &M::callTableByPath, &kValueTableType},
        {kTableByLevelMethodTerm, detail::kByLevel, kFunction, &M::callTableByLevel, &kValueTableType},
    }};
}

} // namespace core
