// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/shaping_methods.h"
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/tree_objects.h"

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

    /// The names of the columns that a list chooses.
    [[nodiscard]] std::vector<wstring> names(const ColumnList& columns) {
        std::vector<wstring> chosen;
        for (const std::size_t position : columns)
            chosen.push_back(data().column(position).info.name);
        return chosen;
    }

    GenericValue callCopy(std::span<GenericValue> arguments) {
        return value(copy_tree(self(), names(optional_columns_argument(data(), arguments[0], 0))));
    }
    GenericValue callGroupBy(std::span<GenericValue> arguments) {
        const GroupingColumns grouping = grouping_arguments(data(), arguments);
        group_tree(self(), names(grouping.columns), names(grouping.totals));
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
