// SPDX-License-Identifier: Apache-2.0
#include "core/tables/convert/cell_fit.h"

#include "core/tables/convert/cell_text.h"

#include <core/strings/trim.h>

namespace core {
namespace {

LossReason number_loss(const NumericQualifiers& qualifiers, const Numeric& number) {
    if (qualifiers.nonnegative() && number.sign() < 0)
        return LossReason::negative;
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    return length - precision > qualifiers.integerDigits() ? LossReason::tooLarge : LossReason::rounded;
}

/// A value of one of the types, limited by the qualifiers of that.
FittedCell limited(const TypeDomain& domain, GenericValue value) {
    if (domain.fits(value))
        return {std::move(value), {}};
    LossReason loss = LossReason::partOfDate;
    if (const auto number = value.asNumeric())
        loss = number_loss(domain.numericQualifiers(), *number);
    else if (value.kind() == ValueKind::string)
        loss = LossReason::cut;
    GenericValue adjusted = domain.adjust(value);
    if (loss == LossReason::cut && adjusted.asString()->size() > value.asString()->size())
        return {std::move(adjusted), {}}; // filled up to a fixed length
    return {std::move(adjusted), loss};
}

/// Why a text has no reading in the types, by the only one that it could be.
LossReason unread(const TypeDomain& domain) {
    if (domain.types().size() != 1)
        return LossReason::notOfType;
    if (domain.containsType(ValueKind::number))
        return LossReason::notNumber;
    if (domain.containsType(ValueKind::date))
        return LossReason::notDate;
    return domain.containsType(ValueKind::boolean) ? LossReason::notBoolean : LossReason::notOfType;
}

} // namespace

FittedCell fit_cell(const TypeDomain& domain, const Value& value) {
    if (domain.fits(value))
        return {value, {}};
    if (value.isUndefined() || value.kind() == ValueKind::null)
        return {domain.adjust(value), {}};
    if (domain.containsType(value.kind()))
        return limited(domain, value);
    const wstring_view* const text = value.asString();
    if (text != nullptr && trim_all(*text).empty())
        return {domain.defaultValue(), {}};
    // In the order in which a description converts.
    if (Numeric number; domain.containsType(ValueKind::number) && value.getNumeric(number))
        return limited(domain, number);
    if (domain.containsType(ValueKind::date)) {
        if (Date date; value.getDate(date))
            return limited(domain, date);
        if (const auto read = text != nullptr ? read_date(trim_all(*text)) : std::nullopt)
            return limited(domain, read->date);
    }
    if (domain.containsType(ValueKind::string)) {
        FittedCell cell = limited(domain, value.presentation());
        if (value.isObject()) // its presentation says what it is, not what it holds
            cell.loss = LossReason::notOfType;
        return cell;
    }
    if (bool flag = false; domain.containsType(ValueKind::boolean) && value.getBoolean(flag))
        return {flag, {}};
    return {domain.defaultValue(), unread(domain)};
}

} // namespace core
