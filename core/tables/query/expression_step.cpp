// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_step.h"

#include "core/tables/query/expression_errors.h"

#include <core/values/type.h>

#include <array>

namespace core {

void ExpressionStep::truths(const RowBatch& rows, std::span<Truth> out, RowId& current) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        current = rows[i];
        out[i] = truth_of(value(current), place());
    }
}

Truth truth_of(const Value& value, ExpressionPlace place) {
    if (value.isTrue())
        return Truth::yes;
    if (value.isFalse())
        return Truth::no;
    if (!is_empty_cell(value))
        fail_expression(place, messages::kExpressionNotCondition, {value.type().presentation()});
    return Truth::unknown;
}

Value value_of(Truth truth) noexcept {
    return truth == Truth::unknown ? Value() : Value(truth == Truth::yes);
}

wstring kind_name(KindSet kinds) {
    static constexpr std::array<std::pair<KindSet, GUID>, 4> kTypes = {{{kNumberKind, kNumberType},
                                                                        {kStringKind, kStringType},
                                                                        {kDateKind, kDateType},
                                                                        {kBooleanKind, kBooleanType}}};
    for (const auto& [kind, type] : kTypes)
        if ((kinds & kind) != 0)
            return Type(type).presentation();
    return Type((kinds & kEmptyKinds) == kinds ? kUndefinedType : kTypeType).presentation();
}

} // namespace core
