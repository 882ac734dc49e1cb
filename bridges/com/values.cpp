// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/values.h"

#include "bridges/com/com_error.h"
#include "bridges/com/errors.h"
#include "bridges/com/our_object.h"
#include "bridges/com/safe_array.h"
#include "bridges/com/value_forms.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace core::com {
namespace {

template <class T>
T whole_of(const Value& value, VARTYPE type) {
    const NumericRef number = value.asNumeric();
    if (number) {
        if constexpr (std::is_same_v<T, std::uint64_t>) {
            const auto whole = static_cast<std::uint64_t>(*number);
            if (*number == Numeric(whole))
                return whole;
        } else if (const auto whole = number->scaled(0); whole && std::in_range<T>(*whole)) {
            return static_cast<T>(*whole);
        } else if (*number == Numeric(std::numeric_limits<T>::min())) { // the one that scaled() leaves out
            return std::numeric_limits<T>::min();
        }
    }
    refuse(value, type);
}

/// The number of a type that reads back to the value, if it has one.
template <class T>
std::optional<T> floating_of(const Numeric& number) {
    const auto floating = static_cast<T>(number);
    const bool exact = std::isfinite(floating) && shortest(floating) == number;
    return exact ? std::optional(floating) : std::nullopt;
}

template <class T>
T floating_of(const Value& value, VARTYPE type) {
    const NumericRef number = value.asNumeric();
    const auto floating = number ? floating_of<T>(*number) : std::nullopt;
    if (!floating)
        refuse(value, type);
    return *floating;
}

void number_to_variant(const Numeric& number, const Value& value, VARIANT& out, ComNumbers how) {
    if (how == ComNumbers::doubles) {
        if (const auto floating = floating_of<double>(number)) {
            V_VT(&out) = VT_R8;
            V_R8(&out) = *floating;
            return;
        }
    }
    if (const auto whole = number.scaled(0)) {
        V_VT(&out) = VT_I8;
        V_I8(&out) = *whole;
        return;
    }
    DECIMAL decimal;
    if (to_decimal(number, decimal)) {
        V_DECIMAL(&out) = decimal;
        V_VT(&out) = VT_DECIMAL; // behind the number, whose first word it is
        return;
    }
    if (how != ComNumbers::text)
        refuse(value, VT_DECIMAL);
    V_BSTR(&out) = Bstr(number.toString()).detach();
    V_VT(&out) = VT_BSTR;
}

void string_to_variant(wstring_view text, VARIANT& out) {
    if (text.size() > std::numeric_limits<std::int32_t>::max() / sizeof(wchar))
        throw std::bad_alloc();
    V_BSTR(&out) = Bstr(text).detach();
    V_VT(&out) = VT_BSTR;
}

void object_to_variant(const Value& value, VARIANT& out, const ComOptions& options, int depth) {
    bool nothing = false;
    if (auto foreign = foreign_object(value, nothing); foreign || nothing) {
        auto dispatch = ComPtr<IDispatch>::query(foreign.get());
        V_VT(&out) = dispatch || nothing ? VT_DISPATCH : VT_UNKNOWN;
        if (dispatch)
            V_DISPATCH(&out) = dispatch.detach();
        else
            V_UNKNOWN(&out) = foreign.detach();
    } else if (SAFEARRAY* const held = held_safe_array(value)) {
        SAFEARRAY* copy = nullptr;
        check(SafeArrayCopy(held, &copy), messages::kBadArray, {});
        VARTYPE element = VT_EMPTY;
        check(SafeArrayGetVartype(copy, &element), messages::kBadArray, {});
        V_ARRAY(&out) = copy;
        V_VT(&out) = static_cast<VARTYPE>(VT_ARRAY | element);
    } else if (const auto error = error_of(value)) {
        V_VT(&out) = VT_ERROR;
        V_ERROR(&out) = *error;
    } else if (options.arrays == ComArrays::objects || !to_safe_array(value, VT_EMPTY, out, options, depth)) {
        V_DISPATCH(&out) = dispatch_of(value).detach();
        V_VT(&out) = VT_DISPATCH;
    }
}

Value record_refused(const VARIANT& variant) {
    Bstr name;
    if (V_RECORDINFO(&variant) != nullptr)
        static_cast<void>(V_RECORDINFO(&variant)->GetName(name.out()));
    throw_error<COMException>(messages::kRecord, {wstring(name.view())});
}

/// The VARIANT that one with VT_BYREF leads to, borrowed from it.
VARIANT target_of(const VARIANT& reference) {
    VARIANT target;
    VariantInit(&target);
    const auto type = static_cast<VARTYPE>(V_VT(&reference) & ~VT_BYREF);
    if (V_BYREF(&reference) == nullptr || size_of_type(type) == 0)
        throw_error<COMException>(messages::kBadType, {type_name(V_VT(&reference))});
    if (type == VT_DECIMAL) {
        V_DECIMAL(&target) = *V_DECIMALREF(&reference);
        V_VT(&target) = VT_DECIMAL;
        return target;
    }
    V_VT(&target) = type;
    std::memcpy(&V_I8(&target), V_BYREF(&reference), size_of_type(type));
    return target;
}

} // namespace

bool is_missing(const VARIANT& variant) noexcept {
    const VARIANT* given = &variant;
    if (V_VT(given) == (VT_VARIANT | VT_BYREF) && V_VARIANTREF(given) != nullptr)
        given = V_VARIANTREF(given);
    return V_VT(given) == VT_ERROR && V_ERROR(given) == DISP_E_PARAMNOTFOUND;
}

void to_variant(const Value& value, VARIANT& out, const ComOptions& options, int depth) {
    if (const auto whole = value.asSmallWhole(); whole && std::in_range<std::int32_t>(*whole)) {
        V_VT(&out) = VT_I4;
        V_I4(&out) = static_cast<LONG>(*whole);
        return;
    }
    switch (value.kind()) {
    case ValueKind::undefined:
        V_VT(&out) = VT_EMPTY;
        break;
    case ValueKind::null:
        V_VT(&out) = VT_NULL;
        break;
    case ValueKind::boolean:
        V_VT(&out) = VT_BOOL;
        V_BOOL(&out) = value.isTrue() ? VARIANT_TRUE : VARIANT_FALSE;
        break;
    case ValueKind::number:
        if (const auto number = value.asNumeric()->scaled(0);
            number && std::in_range<std::int32_t>(*number)) {
            V_VT(&out) = VT_I4;
            V_I4(&out) = static_cast<LONG>(*number);
        } else {
            number_to_variant(*value.asNumeric(), value, out, options.numbers);
        }
        break;
    case ValueKind::string:
        string_to_variant(*value.asString(), out);
        break;
    case ValueKind::date:
        V_DATE(&out) = to_com_date(*value.asDate());
        V_VT(&out) = VT_DATE;
        break;
    case ValueKind::type:
    case ValueKind::object:
        object_to_variant(value, out, options, depth);
        break;
    }
}

namespace {

/// Sets the number of a VARIANT of a numeric type; false for every other type.
bool number_to_typed(const Value& value, VARTYPE type, VARIANT& out) {
    switch (type) {
    case VT_I1:
        V_I1(&out) = static_cast<CHAR>(whole_of<std::int8_t>(value, type));
        return true;
    case VT_UI1:
        V_UI1(&out) = whole_of<std::uint8_t>(value, type);
        return true;
    case VT_I2:
        V_I2(&out) = whole_of<std::int16_t>(value, type);
        return true;
    case VT_UI2:
        V_UI2(&out) = whole_of<std::uint16_t>(value, type);
        return true;
    case VT_I4:
    case VT_INT:
        V_I4(&out) = whole_of<std::int32_t>(value, type);
        return true;
    case VT_UI4:
    case VT_UINT:
        V_UI4(&out) = whole_of<std::uint32_t>(value, type);
        return true;
    case VT_I8:
        V_I8(&out) = whole_of<std::int64_t>(value, type);
        return true;
    case VT_UI8:
        V_UI8(&out) = whole_of<std::uint64_t>(value, type);
        return true;
    case VT_R4:
        V_R4(&out) = floating_of<float>(value, type);
        return true;
    case VT_R8:
        V_R8(&out) = floating_of<double>(value, type);
        return true;
    case VT_CY: {
        const NumericRef number = value.asNumeric();
        const auto scaled = number ? number->scaled(4) : std::nullopt;
        if (!scaled)
            refuse(value, type);
        V_CY(&out).int64 = *scaled;
        return true;
    }
    case VT_DECIMAL: {
        const NumericRef number = value.asNumeric();
        DECIMAL decimal;
        if (!number || !to_decimal(*number, decimal))
            refuse(value, type);
        V_DECIMAL(&out) = decimal;
        return true;
    }
    default:
        return false;
    }
}

} // namespace

void to_typed_variant(const Value& value, VARTYPE type, VARIANT& out, const ComOptions& options, int depth) {
    if (number_to_typed(value, type, out)) {
        V_VT(&out) = type;
        return;
    }
    if ((type & VT_ARRAY) != 0) {
        Variant made;
        if (!to_safe_array(value, static_cast<VARTYPE>(type & VT_TYPEMASK), made, options, depth))
            to_variant(value, made, options, depth);
        if (V_VT(&made) != type)
            refuse(value, type);
        made.moveTo(&out);
        return;
    }
    Variant made;
    to_variant(value, made, options, depth);
    if (type == VT_UNKNOWN && V_VT(&made) == VT_DISPATCH)
        V_VT(&made) = VT_UNKNOWN; // which every IDispatch is
    if (type != VT_VARIANT && V_VT(&made) != type)
        refuse(value, type);
    made.moveTo(&out);
}

void to_reference(const Value& value, const VARIANT& reference, const ComOptions& options, int depth) {
    const auto type = static_cast<VARTYPE>(V_VT(&reference) & ~VT_BYREF);
    if (type == VT_VARIANT && (V_VT(V_VARIANTREF(&reference)) & VT_BYREF) != 0) {
        to_reference(value, *V_VARIANTREF(&reference), options, depth);
        return;
    }
    Variant made;
    to_typed_variant(value, type, made, options, depth);
    if (type == VT_VARIANT) {
        VariantClear(V_VARIANTREF(&reference));
        made.moveTo(V_VARIANTREF(&reference));
        return;
    }
    Variant old; // lets go of what was there
    static_cast<VARIANT&>(old) = target_of(reference);
    if (type == VT_DECIMAL) {
        *V_DECIMALREF(&reference) = V_DECIMAL(&made);
        V_DECIMALREF(&reference)->wReserved = 0;
    } else {
        std::memcpy(V_BYREF(&reference), &V_I8(&made), size_of_type(type));
    }
    V_VT(&made) = VT_EMPTY; // handed over
}

namespace {

Value number_of(const VARIANT& variant) {
    switch (V_VT(&variant)) {
    case VT_I1:
        return Value(static_cast<std::int32_t>(static_cast<signed char>(V_I1(&variant))));
    case VT_UI1:
        return Value(static_cast<std::int32_t>(V_UI1(&variant)));
    case VT_I2:
        return Value(static_cast<std::int32_t>(V_I2(&variant)));
    case VT_UI2:
        return Value(static_cast<std::int32_t>(V_UI2(&variant)));
    case VT_I4:
    case VT_INT:
        return Value(static_cast<std::int32_t>(V_I4(&variant)));
    case VT_UI4:
    case VT_UINT:
        return Value(static_cast<std::uint32_t>(V_UI4(&variant)));
    case VT_I8:
        return Value(static_cast<std::int64_t>(V_I8(&variant)));
    case VT_UI8:
        return Value(static_cast<std::uint64_t>(V_UI8(&variant)));
    case VT_R4:
        return std::isfinite(V_R4(&variant)) ? Value(shortest(V_R4(&variant)))
                                             : Value(double{V_R4(&variant)});
    case VT_R8:
        return Value(V_R8(&variant));
    case VT_CY:
        return Value(Numeric::fromScaled(V_CY(&variant).int64, 4));
    case VT_DECIMAL:
        return Value(from_decimal(V_DECIMAL(&variant)));
    default:
        throw_error<COMException>(messages::kBadType, {type_name(V_VT(&variant))});
    }
}

} // namespace

Value from_variant(const VARIANT& variant, int depth) {
    const VARTYPE type = V_VT(&variant);
    if ((type & VT_BYREF) != 0) {
        if (type == (VT_VARIANT | VT_BYREF)) {
            const VARIANT* const target = V_VARIANTREF(&variant);
            if (target == nullptr || V_VT(target) == (VT_VARIANT | VT_BYREF))
                throw_error<COMException>(messages::kBadType, {type_name(type)});
            return from_variant(*target, depth);
        }
        if ((type & VT_TYPEMASK) == VT_RECORD && (type & VT_ARRAY) == 0)
            return record_refused(variant);
        return from_variant(target_of(variant), depth);
    }
    if ((type & VT_ARRAY) != 0)
        return from_safe_array(V_ARRAY(&variant), static_cast<VARTYPE>(type & VT_TYPEMASK), depth);
    switch (type) {
    case VT_EMPTY:
        return {};
    case VT_NULL:
        return Value::null();
    case VT_BOOL:
        return Value(V_BOOL(&variant) != VARIANT_FALSE);
    case VT_DATE:
        return Value(from_com_date(V_DATE(&variant)));
    case VT_BSTR:
        return Value(Bstr::view(V_BSTR(&variant)));
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return value_of_unknown(V_UNKNOWN(&variant));
    case VT_ERROR:
        return error_value(V_ERROR(&variant));
    case VT_RECORD:
        return record_refused(variant);
    default:
        return number_of(variant);
    }
}

Value missing_value() {
    return error_value(DISP_E_PARAMNOTFOUND);
}

} // namespace core::com
