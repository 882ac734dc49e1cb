// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/context/native_call.h>
#include <core/strings/integer_text.h>

#include <charconv>
#include <cmath>

namespace core {

void ValueReceiver::refuseType() const {
    if (name_ == nullptr)
        parameter_type_mismatch(param_);
    throw_error<ContextException>(messages::kPropertyType, {name_});
}

void ValueReceiver::refuseValue() const {
    if (name_ == nullptr)
        parameter_value_mismatch(param_);
    throw_error<ContextException>(messages::kPropertyValue, {name_});
}

namespace detail {

std::int64_t signed_from(const Value& value, ValueReceiver receiver, std::int64_t least, std::int64_t most) {
    const std::optional<std::int64_t> whole = numeric_from(value, receiver).scaled(0);
    // The least number of 64 bits has no scaled form, since its magnitude is 2^63.
    const bool isLeast = !whole && numeric_from(value, receiver) == Numeric(least);
    if (!isLeast && (!whole || *whole < least || *whole > most))
        receiver.refuseValue();
    return isLeast ? least : *whole;
}

std::uint64_t unsigned_from(const Value& value, ValueReceiver receiver, std::uint64_t most) {
    const Numeric number = numeric_from(value, receiver);
    const auto whole = static_cast<std::uint64_t>(number); // wraps
    if (whole > most || number != Numeric(whole))
        receiver.refuseValue();
    return whole;
}

Numeric numeric_from(const Value& value, ValueReceiver receiver) {
    const auto number = value.asNumeric();
    if (!number)
        receiver.refuseType();
    return *number;
}

wstring_view text_from(const Value& value, ValueReceiver receiver) {
    const wstring_view* const text = value.asString();
    if (text == nullptr)
        receiver.refuseType();
    return *text;
}

GUID guid_from(const Value& value, ValueReceiver receiver) {
    GUID id;
    if (!from_string(text_from(value, receiver), id))
        receiver.refuseValue();
    return id;
}

Value value_of_float(float value) {
    if (!std::isfinite(value))
        return static_cast<double>(value); // throws what it throws for every floating type
    char text[64];                         // the longest number without an exponent has 47 digits
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr;
    return Numeric::fromString(std::string_view(text, static_cast<std::size_t>(end - text)));
}

void missing_argument(std::size_t param) {
    throw_error<ContextException>(messages::kParameterMissing, {string_intto(param + 1)});
}

Value value_of_object(IUnknown* object) {
    const InterfacePtr<IValue> value(object);
    if (object != nullptr && !value)
        throw_error<ContextException>(messages::kNoValue);
    return value;
}

} // namespace detail
} // namespace core
