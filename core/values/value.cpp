// SPDX-License-Identifier: Apache-2.0
#include "core/values/primitive_types.h"

#include <core/locales/collate.h>
#include <core/runtime/settings.h>
#include <core/values/type_object.h>
#include <core/values/value.h>

#include <typeinfo>

namespace core {
namespace {

constinit UndefinedValue shared_undefined;
constinit NullValue shared_null;
constinit BooleanValue shared_true(true);
constinit BooleanValue shared_false(false);
constinit StringValue shared_empty_string{StringValue::SharedEmpty{}};
constinit DateValue shared_empty_date{DateValue::SharedEmpty{}};

NumberValue* shared_zero() {
    static auto* const zero = new NumberValue(NumberValue::SharedZero{}); // never destroyed: all may hold it
    return zero;
}

std::uintptr_t word(PrimitiveValue* object, ValueKind kind) noexcept {
    return reinterpret_cast<std::uintptr_t>(static_cast<IValue*>(object)) | static_cast<std::uintptr_t>(kind);
}

/// The kind of an object that is one of the library's own primitive values; `object` for all others, also for
/// another module's idea of a Number.
ValueKind own_kind(IValue& value) noexcept {
    const std::int32_t code = value.getType()->code();
    if (code == Type::object)
        return ValueKind::object;
    const std::type_info& type = typeid(value);
    switch (code) {
    case Type::undefined:
        return type == typeid(UndefinedValue) ? ValueKind::undefined : ValueKind::object;
    case Type::null:
        return type == typeid(NullValue) ? ValueKind::null : ValueKind::object;
    case Type::boolean:
        return type == typeid(BooleanValue) ? ValueKind::boolean : ValueKind::object;
    case Type::number:
        return type == typeid(NumberValue) ? ValueKind::number : ValueKind::object;
    case Type::string:
        return type == typeid(StringValue) ? ValueKind::string : ValueKind::object;
    case Type::date:
        return type == typeid(DateValue) ? ValueKind::date : ValueKind::object;
    case Type::type:
        return type == typeid(TypeValue) ? ValueKind::type : ValueKind::object;
    default:
        return ValueKind::object;
    }
}

int compare_numbers(const Value& a, const Value& b) noexcept {
    const auto x = a.asSmallWhole();
    const auto y = b.asSmallWhole();
    return x && y ? (*x > *y) - (*x < *y) : a.asNumeric()->compare(*b.asNumeric());
}

int order(int difference) noexcept {
    return (difference > 0) - (difference < 0);
}

} // namespace

Value::Value(double value) : Value(Numeric(value)) {}

Value::Value(Numeric&& value) {
    const auto count = static_cast<std::int64_t>(value.limbs().size());
    const bool small = value.fractionLimbs() <= 0 && count - value.fractionLimbs() <= 2; // below 10^18
    bits_ = small ? makeWhole(static_cast<std::int64_t>(value)) : makeBoxed(std::move(value));
}

std::uintptr_t Value::makeBoxed(Numeric&& value) {
    return word(NumberValue::make(std::move(value)), ValueKind::number);
}

InterfacePtr<IValue> Value::makeObject() const {
    return whole() == 0 ? InterfacePtr<IValue>(shared_zero())
                        : InterfacePtr<IValue>::adopt(NumberValue::make(whole()));
}

Value::Value(wstring_view text)
    : bits_(word(text.empty() ? &shared_empty_string : StringValue::make(text), ValueKind::string)) {}

Value::Value(Date value)
    : bits_(word(value.isEmpty() ? &shared_empty_date : DateValue::make(value), ValueKind::date)) {}

Value::Value(const Type& type) : bits_(word(TypeValue::make(type), ValueKind::type)) {}

Value::Value(IValue* value) {
    if (value == nullptr)
        return;
    const ValueKind kind = own_kind(*value);
    switch (kind) {
    case ValueKind::undefined:
    case ValueKind::null:
        bits_ = tag(kind);
        return;
    case ValueKind::boolean:
        bits_ = tag(kind) | (static_cast<BooleanValue*>(value)->payload() ? kTrueBit : 0);
        return;
    default:
        value->AddRef();
        bits_ = reinterpret_cast<std::uintptr_t>(value) | tag(kind);
    }
}

/// The one object of a value that has none of its own; null for a number.
IValue* Value::sharedObject() const noexcept {
    switch (kind()) {
    case ValueKind::undefined:
        return &shared_undefined;
    case ValueKind::null:
        return &shared_null;
    case ValueKind::boolean:
        return isTrue() ? &shared_true : &shared_false;
    default:
        return nullptr;
    }
}

Type Value::type() const noexcept {
    return Type(isObject() ? object()->getType() : detail::primitive_type(kind()));
}

bool Value::equals(const Value& other) const noexcept {
    if (bits_ == other.bits_)
        return true;
    if (kind() != other.kind()) {
        // Equal only where one is another module's idea of the other's kind, which the other knows to read.
        return isObject() ? other.equals(object()) : other.isObject() && equals(other.object());
    }
    switch (kind()) {
    case ValueKind::number:
        return !(inWord() && other.inWord()) && *asNumeric() == *other.asNumeric();
    case ValueKind::string:
        return string()->payload() == other.string()->payload();
    case ValueKind::undefined:
    case ValueKind::null:
    case ValueKind::boolean:
        return false; // all of the value is in the word
    default:
        return object()->isEqual(other.object());
    }
}

bool Value::equals(const IValue* other) const noexcept {
    if (!inWord())
        return object()->isEqual(other);
    return other != nullptr && other->getType() == detail::primitive_type(ValueKind::number) &&
           *static_cast<const Numeric*>(other->getDataPtr()) == Numeric(whole());
}

std::int32_t Value::hashCode() const noexcept {
    switch (kind()) {
    case ValueKind::number:
        return inWord() ? static_cast<std::int32_t>(whole()) : number()->hashCode();
    case ValueKind::string:
        return string()->hashCode();
    default:
        return object()->hashCode();
    }
}

int compare_values(const Value& a, const Value& b) {
    if (a.kind() != b.kind())
        return a.kind() < b.kind() ? -1 : 1;
    switch (a.kind()) {
    case ValueKind::undefined:
    case ValueKind::null:
        return 0;
    case ValueKind::boolean:
        return static_cast<int>(a.isTrue()) - static_cast<int>(b.isTrue());
    case ValueKind::number:
        return compare_numbers(a, b);
    case ValueKind::date:
        return *a.asDate() < *b.asDate() ? -1 : *b.asDate() < *a.asDate() ? 1 : 0;
    case ValueKind::string:
        return order(compare(*a.asString(), *b.asString(), current_settings().locale));
    case ValueKind::type:
    case ValueKind::object:
        break;
    }
    return order(compare(a.presentation(), b.presentation(), current_settings().locale));
}

bool IValueImpl::getBoolean(bool& out) const {
    out = false;
    return false;
}

bool IValueImpl::getNumeric(Numeric& out) const {
    out = Numeric();
    return false;
}

bool IValueImpl::getString(wstring& out) const {
    out.clear();
    return true;
}

bool IValueImpl::getDate(Date& out) const {
    out = Date();
    return false;
}

std::int32_t IValueImpl::hashCode() const noexcept {
    // Objects are aligned: the lowest bits tell nothing.
    const auto address = reinterpret_cast<std::uintptr_t>(this) >> 4;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(address ^ (address >> 16 >> 16)));
}

} // namespace core
