// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/table_parameters.h"

#include <core/collections/value_array.h>
#include <core/context/context_table.h>
#include <core/tables/structures.h>
#include <core/tables/terms.h>
#include <core/tables/trees.h>
#include <core/tables/value_tree.h>

#include <array>

namespace core {

/// The methods of a value table that give it another shape, and take rows of other shapes. `T` is the table.
template <class T>
class ShapingMethods {
  protected:
    ~ShapingMethods() = default;

    [[nodiscard]] static constexpr std::array<Method<T>, 5> shapingMethods() noexcept;

  private:
    [[nodiscard]] T& self() noexcept { return static_cast<T&>(*this); }
    [[nodiscard]] wstring_view columnName(const Value& argument, int param) {
        const TableData& data = self().data();
        return data.column(column_argument(data, argument, param)).info.name;
    }
    /// An object as a script's value.
    template <class I>
    [[nodiscard]] static GenericValue object(const InterfacePtr<I>& made) {
        return Value(made.template query<IValue>());
    }

    GenericValue callAddRows(std::span<GenericValue> arguments) {
        if (!arguments[0].query<IValueTableBaseRO>() && !arguments[0].query<IValueSequence>())
            parameter_type_mismatch(0);
        Losses losses;
        const bool goesOn = flag_argument(arguments[1], 1);
        add_rows(self(), arguments[0], goesOn ? &losses : nullptr);
        if (goesOn)
            self().data().setLosses(std::move(losses));
        return {};
    }
    GenericValue callUnloadRows(std::span<GenericValue>) { return object(structures_of(self())); }
    GenericValue callTreeByParent(std::span<GenericValue> arguments) {
        return object(tree_by_parent(self(), columnName(arguments[0], 0), columnName(arguments[1], 1)));
    }
    GenericValue callTreeByPath(std::span<GenericValue> arguments) {
        return object(tree_by_path(self(), columnName(arguments[0], 0), text_argument(arguments[1], 1)));
    }
    GenericValue callTreeByLevel(std::span<GenericValue> arguments) {
        return object(tree_by_level(self(), columnName(arguments[0], 0)));
    }
};

namespace detail {

inline constexpr NamePair kKeyName = {u"Key", u"Ключ"};
inline constexpr NamePair kPathName = {u"Path", u"Путь"};
inline constexpr NamePair kLevelName = {u"Level", u"Уровень"};
inline constexpr Param kSeparatorParam = {
    .byDefault = ParamDefault::literal, .names = {u"Separator", u"Разделитель"}, .literal = u"/"};
inline constexpr Param kLevelParam = {
    .byDefault = ParamDefault::literal, .names = kLevelName, .literal = u"Level"};
inline constexpr Param kAddRows[] = {named_param(kRowCollectionTerm),
                                     named_param({u"GoOn", u"Продолжать"}, ParamDefault::falseValue)};
inline constexpr Param kByParent[] = {named_param(kKeyName), named_param(kParentPropTerm)};
inline constexpr Param kByPath[] = {named_param(kPathName), kSeparatorParam};
inline constexpr Param kByLevel[] = {kLevelParam};

} // namespace detail

template <class T>
constexpr std::array<Method<T>, 5> ShapingMethods<T>::shapingMethods() noexcept {
    using M = ShapingMethods;
    return {{
        {kAddRowsMethodTerm, detail::kAddRows, kProcedure, &M::callAddRows},
        {kUnloadRowsMethodTerm, required(0), kFunction, &M::callUnloadRows, &kValueArrayType},
        {kTreeByParentMethodTerm, detail::kByParent, kFunction, &M::callTreeByParent, &kValueTreeType},
        {kTreeByPathMethodTerm, detail::kByPath, kFunction, &M::callTreeByPath, &kValueTreeType},
        {kTreeByLevelMethodTerm, detail::kByLevel, kFunction, &M::callTreeByLevel, &kValueTreeType},
    }};
}

} // namespace core
