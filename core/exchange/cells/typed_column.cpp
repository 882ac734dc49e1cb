// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/typed_column.h"

#include "core/tables/convert/cell_fit.h"

#include <core/strings/trim.h>

namespace core {
namespace {

bool lost_all(LossReason reason) noexcept {
    return reason == LossReason::notNumber || reason == LossReason::notDate ||
           reason == LossReason::notBoolean || reason == LossReason::notOfType;
}

/// How many units a text in UTF-8 has.
std::size_t units_of(std::string_view text) noexcept {
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        units += ((byte & 0xC0U) != 0x80U ? 1U : 0U) + (byte >= 0xF0U ? 1U : 0U);
    }
    return units;
}

Numeric number_of(const NumberText& text) {
    return text.wide ? *text.wide : Numeric::fromScaled(text.word, text.digits);
}

} // namespace

TypedColumn::TypedColumn(TypeDomain domain, LocaleForms* forms) : domain_(std::move(domain)), forms_(forms) {
    const bool one = domain_.types().size() == 1;
    store_ = one && domain_.containsType(ValueKind::number)   ? Store::numbers
             : one && domain_.containsType(ValueKind::date)   ? Store::dates
             : one && domain_.containsType(ValueKind::string) ? Store::texts
                                                              : Store::any;
    const NumericQualifiers& qualifiers = domain_.numericQualifiers();
    limited_ = qualifiers.digits() != 0 || qualifiers.nonnegative();
}

void TypedColumn::reserve(std::size_t rows) {
    if (store_ == Store::texts)
        texts_.reserve(rows);
    else if (store_ != Store::any)
        words_.reserve(rows);
}

std::optional<LossReason> TypedColumn::add(std::string_view text) {
    if (store_ == Store::texts)
        return addText(text);
    const std::string_view bare = trim_all(text);
    if (bare.empty()) {
        addEmpty();
        return std::nullopt;
    }
    switch (store_) {
    case Store::numbers:
        return addNumber(bare);
    case Store::dates:
        return addDate(bare);
    default:
        return addAny(bare);
    }
}

/// Quickly, for numbers of a word; false says nothing.
bool TypedColumn::fits(const NumberText& number) const noexcept {
    const NumericQualifiers& qualifiers = domain_.numericQualifiers();
    if (number.wide || (qualifiers.nonnegative() && number.word < 0))
        return false;
    if (qualifiers.digits() == 0)
        return true;
    const std::uint64_t digits = std::uint64_t{qualifiers.integerDigits()} + number.digits;
    if (number.digits > qualifiers.fractionDigits())
        return false;
    if (digits >= kTens.size())
        return true;
    const auto limit = kTens[static_cast<std::size_t>(digits)];
    return number.word < limit && number.word > -limit;
}

std::optional<LossReason> TypedColumn::addNumber(std::string_view text) {
    std::optional<NumberText> number;
    if (forms_ == nullptr)
        number = read_number(text);
    else if (const auto read = forms_->number(text))
        number = number_text(*read);
    if (!number) {
        addEmpty();
        return LossReason::notNumber;
    }
    if (!limited_ || fits(*number)) {
        words_.addNumber(*number);
        return std::nullopt;
    }
    const FittedCell cell = fit_cell(domain_, Value(number_of(*number)));
    words_.addNumber(number_text(*cell.value.asNumeric()));
    return cell.loss;
}

std::optional<LossReason> TypedColumn::addDate(std::string_view text) {
    auto read = forms_ != nullptr ? forms_->date(text) : std::nullopt;
    if (!read) {
        if (const auto iso = read_date(text))
            read = iso->date;
    }
    if (!read) {
        addEmpty();
        return LossReason::notDate;
    }
    const Date kept = domain_.dateQualifiers().adjust(*read);
    words_.addWord(static_cast<std::int64_t>(kept.ticks()));
    return kept == *read ? std::nullopt : std::optional(LossReason::partOfDate);
}

std::optional<LossReason> TypedColumn::addText(std::string_view text) {
    const StringQualifiers& qualifiers = domain_.stringQualifiers();
    if (qualifiers.length() == 0 || (qualifiers.varying() && units_of(text) <= qualifiers.length())) {
        texts_.add(text);
        return std::nullopt;
    }
    const FittedCell cell = fit_cell(domain_, text_value(text, scratch_));
    texts_.addValue(cell.value);
    return cell.loss;
}

std::optional<LossReason> TypedColumn::addAny(std::string_view text) {
    const FittedCell cell = fit_cell(domain_, text_value(text, scratch_));
    if (cell.loss && lost_all(*cell.loss)) {
        addEmpty();
        return cell.loss;
    }
    const std::size_t row = any_.size();
    any_.grow(row + 1);
    any_.put(static_cast<RowId>(row), cell.value);
    return cell.loss;
}

void TypedColumn::addEmpty() {
    hasEmpty_ = true;
    if (store_ == Store::any)
        any_.grow(any_.size() + 1);
    else
        words_.addEmpty();
}

BuiltColumn TypedColumn::finish() {
    if (hasEmpty_ && !domain_.isEmpty())
        domain_.addType(kUndefinedType);
    switch (store_) {
    case Store::numbers:
        return {domain_, words_.numbers()};
    case Store::dates:
        return {domain_, words_.dates()};
    case Store::texts:
        return {domain_, texts_.finish()};
    case Store::any:
        break;
    }
    return {domain_, std::move(any_)};
}

} // namespace core
