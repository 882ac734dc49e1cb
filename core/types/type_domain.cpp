// SPDX-License-Identifier: Apache-2.0
#include <core/locales/date_format.h>
#include <core/locales/settings.h>
#include <core/types/type_domain.h>

#include <algorithm>

namespace core {

Type TypeDomain::defaultType() const {
    return size() == 1 ? Type(types().front()) : Type(Type::undefined);
}

GenericValue TypeDomain::defaultValue() const {
    if (size() != 1)
        return {};
    if (containsType(ValueKind::null))
        return Value::null();
    if (containsType(ValueKind::boolean))
        return false;
    if (containsType(ValueKind::number))
        return 0;
    if (containsType(ValueKind::string))
        return stringQualifiers().adjust({});
    if (containsType(ValueKind::date))
        return Date();
    if (containsType(ValueKind::type))
        return Type(Type::undefined);
    return {};
}

bool TypeDomain::fits(const Value& value) const noexcept {
    if (isEmpty())
        return true;
    const ValueKind kind = value.kind();
    if (kind == ValueKind::object) // another module's idea of a Number is converted to one of ours
        return containsObjectType(value.object()->getType()->id());
    if (!containsType(kind))
        return false;
    switch (kind) {
    case ValueKind::number:
        return numericQualifiers().fits(*value.asNumeric());
    case ValueKind::string:
        return stringQualifiers().fits(*value.asString());
    case ValueKind::date:
        return dateQualifiers().fits(*value.asDate());
    default:
        return true;
    }
}

wstring TypeDomain::presentation(const Value& value) const {
    constexpr std::size_t kMost = 1000;
    if (value.kind() == ValueKind::date && containsType(ValueKind::date)) {
        const DateFractions kept = dateQualifiers().fractions();
        return default_date_format().format(*value.asDate(), kept == DateFractions::date ? DatePattern::date
                                                             : kept == DateFractions::time
                                                                 ? DatePattern::time
                                                                 : DatePattern::dateTime);
    }
    wstring text = value.presentation();
    const std::size_t digits = numericQualifiers().fractionDigits();
    if (value.kind() != ValueKind::number || !containsType(ValueKind::number) || digits == 0 ||
        digits > kMost || !current_settings().part<FormatSettings>().numericFormat.empty())
        return text;
    const std::size_t point = std::min(text.find(u'.'), text.size());
    if (point == text.size())
        text += u'.';
    const std::size_t wanted = point + 1 + digits;
    if (text.size() < wanted)
        text.append(wanted - text.size(), u'0');
    return text;
}

bool TypeDomain::canHold(const Value& value) const {
    const ValueKind kind = value.kind();
    if (isEmpty() || containsType(kind))
        return true;
    if (kind == ValueKind::object)
        return containsObjectType(value.object()->getType()->id());
    return kind == ValueKind::undefined && defaultValue().isUndefined();
}

/// Of a value that does not fit.
GenericValue TypeDomain::adjusted(const Value& value) const {
    if (!containsType(value.kind()))
        return converted(value);
    switch (value.kind()) {
    case ValueKind::number:
        return numericQualifiers().adjust(*value.asNumeric());
    case ValueKind::string:
        return stringQualifiers().adjust(*value.asString());
    default: // the only other kind with qualifiers
        return dateQualifiers().adjust(*value.asDate());
    }
}

/// Numbers and dates come first, because every value has a string reading, and that before a Boolean, which
/// keeps less of a number.
GenericValue TypeDomain::converted(const Value& value) const {
    if (value.kind() == ValueKind::undefined || value.kind() == ValueKind::null)
        return defaultValue();
    if (Numeric number; containsType(ValueKind::number) && value.getNumeric(number))
        return numericQualifiers().adjust(number);
    if (Date date; containsType(ValueKind::date) && value.getDate(date))
        return dateQualifiers().adjust(date);
    if (wstring text; containsType(ValueKind::string) && value.getString(text))
        return stringQualifiers().adjust(text);
    if (bool flag = false; containsType(ValueKind::boolean) && value.getBoolean(flag))
        return flag;
    return defaultValue();
}

} // namespace core
