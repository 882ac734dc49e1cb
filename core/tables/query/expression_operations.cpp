// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_operations.h"

#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_words.h"

#include <core/numbers/errors.h>

#include <limits>

namespace core {
namespace {

using Operator = ExpressionOperator;

[[noreturn]] void unsuited(Operator sign, const Value& a, const Value& b, ExpressionPlace place) {
    fail_expression(place, messages::kExpressionOperands,
                    {wstring(operator_text(sign)), a.type().presentation(), b.type().presentation()});
}

Value of_numbers(Operator sign, const Numeric& a, const Numeric& b, ExpressionPlace place) {
    try {
        switch (sign) {
        case Operator::add:
            return Value(a + b);
        case Operator::subtract:
            return Value(a - b);
        case Operator::multiply:
            return Value(a * b);
        case Operator::divide:
            return Value(a / b);
        default:
            return Value(a % b);
        }
    } catch (const NumericException& failure) {
        fail_expression(place, failure);
    }
}

/// A date some seconds later; fractions of a second do not count.
Date shifted(const Date& date, const Numeric& seconds) {
    const Numeric limit(Date::kLimit / kTicksPerSecond + 1); // beyond either end of the calendar anyway
    const Numeric bounded = seconds > limit ? limit : seconds < -limit ? -limit : seconds;
    return date + DateSpan(static_cast<std::int64_t>(bounded) * kTicksPerSecond);
}

} // namespace

Value arithmetic(Operator sign, const Value& a, const Value& b, ExpressionPlace place) {
    if (is_empty_cell(a) || is_empty_cell(b))
        return {};
    const NumericRef number = b.asNumeric();
    if (const NumericRef first = a.asNumeric(); first && number)
        return of_numbers(sign, *first, *number, place);
    if (const wstring_view* const text = a.asString(); text != nullptr && sign == Operator::add) {
        if (const wstring_view* const more = b.asString())
            return Value(wstring(*text).append(*more));
    }
    if (const Date* const date = a.asDate()) {
        if (number && (sign == Operator::add || sign == Operator::subtract))
            return Value(shifted(*date, sign == Operator::add ? *number : -*number));
        if (const Date* const other = b.asDate(); other != nullptr && sign == Operator::subtract)
            return Value(Numeric((*date - *other).ticks()) / Numeric(kTicksPerSecond));
    }
    unsuited(sign, a, b, place);
}

KindSet arithmetic_kinds(Operator sign, KindSet a, KindSet b) noexcept {
    const auto both = [=](KindSet left, KindSet right) { return (a & left) != 0 && (b & right) != 0; };
    const bool sums = sign == Operator::add || sign == Operator::subtract;
    KindSet result = 0;
    if (both(kNumberKind, kNumberKind) || (sign == Operator::subtract && both(kDateKind, kDateKind)))
        result |= kNumberKind;
    if (sign == Operator::add && both(kStringKind, kStringKind))
        result |= kStringKind;
    if (sums && both(kDateKind, kNumberKind))
        result |= kDateKind;
    const bool empty = ((a | b) & kEmptyKinds) != 0;
    return empty ? static_cast<KindSet>(result | kind_bit(ValueKind::undefined)) : result;
}

Truth comparison(Operator sign, const Value& a, const Value& b, ExpressionPlace place) {
    if (is_empty_cell(a) || is_empty_cell(b))
        return Truth::unknown;
    const bool equality = sign == Operator::equal || sign == Operator::notEqual;
    if (a.kind() != b.kind() || (!equality && a.kind() > ValueKind::date))
        fail_expression(place, messages::kExpressionCompared,
                        {a.type().presentation(), b.type().presentation()});
    const bool answer =
        equality ? a.equals(b) == (sign == Operator::equal) : answers(sign, compare_values(a, b));
    return answer ? Truth::yes : Truth::no;
}

bool comparable(KindSet a, KindSet b) noexcept {
    const auto filled = [](KindSet kinds) { return static_cast<KindSet>(kinds & ~kEmptyKinds); };
    return filled(a) == 0 || filled(b) == 0 || (filled(a) & filled(b)) != 0;
}

WordInterval word_interval(Operator sign, const Value& value, const WordForm& form) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const Date* const date = value.asDate();
    const Numeric exact =
        date != nullptr ? Numeric(date->ticks()) : *value.asNumeric() * Numeric(10).pow(form.scale);
    const Numeric floor = exact.floor();
    const bool whole = floor == exact;
    Numeric least(-kMost);
    Numeric most(kMost);
    if (sign == Operator::equal || sign == Operator::greaterEqual)
        least = whole ? floor : floor + Numeric(1);
    if (sign == Operator::greater)
        least = floor + Numeric(1);
    if (sign == Operator::equal || sign == Operator::lessEqual)
        most = floor;
    if (sign == Operator::less)
        most = whole ? floor - Numeric(1) : floor;
    if (least > Numeric(kMost) || most < Numeric(-kMost) || least > most)
        return {};
    return {.least = least < Numeric(-kMost) ? -kMost : static_cast<std::int64_t>(least),
            .most = most > Numeric(kMost) ? kMost : static_cast<std::int64_t>(most)};
}

} // namespace core
