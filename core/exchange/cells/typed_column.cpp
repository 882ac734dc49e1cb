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

NumberText text_of(const Numeric& number) {
    NumberText text;
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    const auto word =
        precision <= Numeric::kMaxScale ? number.scaled(static_cast<std::uint32_t>(precision)) : std::nullopt;
    if (word) {
        text.word = *word;
        text.digits = static_cast<std::uint8_t>(precision);
    } else {
        text.wide = number;
    }
    return text;
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
    if (number.wide || (qualifiers.nonnegative() && number.word < 0) ||
        number.digits > qualifiers.fractionDigits())
        return false;
    std::int64_t bound = 1;
    for (std::uint32_t i = qualifiers.integerDigits() + number.digits;
         i > 0 && bound <= 1'000'000'000'000'000; --i)
        bound *= 10;
    return number.word < bound && number.word > -bound;
}

std::optional<LossReason> TypedColumn::addNumber(std::string_view text) {
    std::optional<NumberText> number;
    if (forms_ == nullptr)
        number = read_number(text);
    else if (const auto plain = forms_->plainNumber(text))
        number = read_number(*plain);
    if (!number) {
        addEmpty();
        return LossReason::notNumber;
    }
    if (!limited_ || fits(*number)) {
        words_.addNumber(*number);
        return std::nullopt;
    }
    const FittedCell cell = fit_cell(domain_, Value(number_of(*number)));
    words_.addNumber(text_of(*cell.value.asNumeric()));
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
    if (domain_.stringQualifiers().length() == 0) {
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
