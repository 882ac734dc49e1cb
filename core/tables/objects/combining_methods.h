// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/table_parameters.h"

#include <core/context/arguments.h>
#include <core/context/context_table.h>
#include <core/tables/joins.h>
#include <core/tables/sets.h>
#include <core/tables/terms.h>
#include <core/tables/value_table.h>

#include <array>

namespace core {

/// The methods of a value table that make one table of two, and of a table its different rows. `T` is the
/// table.
template <class T>
class CombiningMethods {
  protected:
    ~CombiningMethods() = default;

    [[nodiscard]] static constexpr std::array<Method<T>, 5> combiningMethods() noexcept;

  private:
    [[nodiscard]] IValueTableBaseRO& self() noexcept { return static_cast<T&>(*this); }
    /// A table as a script's value.
    [[nodiscard]] static GenericValue value(const InterfacePtr<IValueTable>& table) {
        return Value(table.template query<IValue>());
    }
    [[nodiscard]] static InterfacePtr<IValueTableBaseRO> other(const Value& argument) {
        return object_argument<IValueTableBaseRO>(argument, 0);
    }

    GenericValue callJoin(std::span<GenericValue> arguments) {
        const auto table = other(arguments[0]);
        std::optional<wstring> columns;
        if (!arguments[2].isUndefined())
            columns = text_argument(arguments[2], 2);
        JoinKind kind = JoinKind::inner;
        if (!arguments[3].isUndefined()) {
            const auto number = script_enumeration(kind)->number(arguments[3]);
            if (!number)
                parameter_type_mismatch(3);
            kind = static_cast<JoinKind>(*number);
        }
        return value(join(self(), *table, text_argument(arguments[1], 1), columns, kind));
    }
    GenericValue callUnion(std::span<GenericValue> arguments) {
        const bool all = flag_argument(arguments[1], 1);
        return value(unite(self(), *other(arguments[0]), all ? EqualRows::all : EqualRows::once));
    }
    GenericValue callExcept(std::span<GenericValue> arguments) {
        return value(except(self(), *other(arguments[0])));
    }
    GenericValue callIntersect(std::span<GenericValue> arguments) {
        return value(intersect(self(), *other(arguments[0])));
    }
    GenericValue callDistinct(std::span<GenericValue> arguments) {
        std::vector<wstring> columns;
        if (!arguments[0].isUndefined()) {
            for (const wstring_view name : list_argument(arguments[0], 0)) {
                if (name.empty())
                    parameter_value_mismatch(0);
                columns.emplace_back(name);
            }
        }
        return value(distinct(self(), columns));
    }
};

namespace detail {

inline constexpr Param kTableParam = named_param({u"Table", u"Таблица"});
inline constexpr Param kOfTable[] = {kTableParam};
inline constexpr Param kJoin[] = {kTableParam, named_param({u"Condition", u"Условие"}), kAnyColumnsParam,
                                  named_param({u"Kind", u"Вид"}, kUndefinedDefault)};
inline constexpr Param kUnion[] = {kTableParam, named_param({u"All", u"Все"}, ParamDefault::falseValue)};
inline constexpr Param kDistinct[] = {kAnyColumnsParam};

} // namespace detail

template <class T>
constexpr std::array<Method<T>, 5> CombiningMethods<T>::combiningMethods() noexcept {
    using M = CombiningMethods;
    return {{
        {kJoinMethodTerm, detail::kJoin, kFunction, &M::callJoin, &kValueTableType},
        {kUnionMethodTerm, detail::kUnion, kFunction, &M::callUnion, &kValueTableType},
        {kExceptMethodTerm, detail::kOfTable, kFunction, &M::callExcept, &kValueTableType},
        {kIntersectMethodTerm, detail::kOfTable, kFunction, &M::callIntersect, &kValueTableType},
        {kDistinctMethodTerm, detail::kDistinct, kFunction, &M::callDistinct, &kValueTableType},
    }};
}

} // namespace core
