// SPDX-License-Identifier: Apache-2.0
#include "host/language/operators.h"

#include <core/values/errors.h>

namespace core::script {

namespace {

[[noreturn]] void unsuited(const GenericValue& left, const GenericValue& right) {
    throw_error<ContextException>("IDS_SCRIPT_UNSUITED_OPERANDS",
                                  {left.type().presentation(), right.type().presentation()});
}

Numeric arithmetic(Operator sign, const Numeric& left, const Numeric& right) {
    switch (sign) {
    case Operator::add:
        return left + right;
    case Operator::subtract:
        return left - right;
    case Operator::multiply:
        return left * right;
    case Operator::divide:
        return left / right;
    default:
        return left % right;
    }
}

/// A date some seconds later; fractions of a second do not count.
Date shifted(const Date& date, const Numeric& seconds) {
    // What does not fit is beyond either end of the calendar anyway.
    const Numeric limit(Date::kLimit / kTicksPerSecond + 1);
    const Numeric bounded = seconds.compare(limit) > 0    ? limit
                            : seconds.compare(-limit) < 0 ? -limit
                                                          : seconds;
    return date + DateSpan(static_cast<std::int64_t>(bounded) * kTicksPerSecond);
}

Numeric seconds_between(const Date& from, const Date& to) {
    return Numeric((to - from).ticks()) / Numeric(kTicksPerSecond);
}

/// Strings that scripts make longer piece by piece are long: nothing is copied that need not be.
GenericValue joined(wstring_view left, const GenericValue& right) {
    const wstring other = right.kind() == ValueKind::string ? wstring() : right.presentation();
    const wstring_view end = right.kind() == ValueKind::string ? *right.asString() : wstring_view(other);
    wstring text;
    text.reserve(left.size() + end.size());
    return GenericValue(text.append(left).append(end));
}

GenericValue compute(Operator sign, const GenericValue& left, const GenericValue& right) {
    if (left.kind() == ValueKind::string && sign == Operator::add)
        return joined(*left.asString(), right);
    Numeric number;
    if (const Date* const date = left.asDate()) {
        if (sign == Operator::subtract && right.asDate() != nullptr)
            return GenericValue(seconds_between(*right.asDate(), *date));
        if (!(sign == Operator::add || sign == Operator::subtract) || !right.getNumeric(number))
            unsuited(left, right);
        return GenericValue(shifted(*date, sign == Operator::add ? number : -number));
    }
    if (left.kind() == ValueKind::number && right.kind() == ValueKind::number)
        return GenericValue(arithmetic(sign, *left.asNumeric(), *right.asNumeric()));
    Numeric first;
    if (!left.getNumeric(first) || !right.getNumeric(number))
        unsuited(left, right);
    return GenericValue(arithmetic(sign, first, number));
}

int order(const GenericValue& left, const GenericValue& right) {
    const ValueKind kind = left.kind();
    if (kind != right.kind() || kind < ValueKind::boolean || kind > ValueKind::date)
        unsuited(left, right);
    return compare_values(left, right);
}

} // namespace

GenericValue apply(Operator sign, const GenericValue& left, const GenericValue& right) {
    switch (sign) {
    case Operator::equal:
        return GenericValue(left.equals(right));
    case Operator::notEqual:
        return GenericValue(!left.equals(right));
    case Operator::less:
        return GenericValue(order(left, right) < 0);
    case Operator::lessEqual:
        return GenericValue(order(left, right) <= 0);
    case Operator::greater:
        return GenericValue(order(left, right) > 0);
    case Operator::greaterEqual:
        return GenericValue(order(left, right) >= 0);
    default:
        return compute(sign, left, right);
    }
}

GenericValue negate(const GenericValue& value) {
    Numeric number;
    if (!value.getNumeric(number))
        throw_error<ContextException>("IDS_SCRIPT_NOT_A_NUMBER", {value.type().presentation()});
    return GenericValue(-number);
}

bool truth(const GenericValue& value) {
    bool result = false;
    if (!value.getBoolean(result))
        throw_error<ContextException>("IDS_SCRIPT_NOT_A_BOOLEAN", {value.type().presentation()});
    return result;
}

} // namespace core::script
