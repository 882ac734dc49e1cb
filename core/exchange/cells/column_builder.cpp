// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/column_builder.h"

#include <core/runtime/threads/thread.h>
#include <core/values/type.h>

#include <algorithm>
#include <array>

namespace core {
namespace {

/// A row in so many asks whether to stop.
constexpr std::size_t kAskedRows = 4096;
constexpr std::uint8_t kEmptyShape = 0xFF;
constexpr std::uint8_t kOddShape = 0xFE;

/// The spellings of Booleans; those with even indexes are true.
constexpr std::array<std::string_view, 12> kBooleans = {
    "True", "False", "true", "false", "TRUE", "FALSE", "Истина", "Ложь", "истина", "ложь", "ИСТИНА", "ЛОЖЬ"};

bool is_blank(std::string_view text) noexcept {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

std::string_view without_blanks(std::string_view text) noexcept {
    if (text.empty() || (text.front() != ' ' && text.back() != ' ')) [[likely]]
        return text;
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

void append_date(std::string& text, Date date, DateForm form) {
    char buffer[Date::kXMLTextLength];
    if (form == DateForm::digits) {
        date.toString(buffer);
        text.append(buffer, Date::kTextLength);
        return;
    }
    date.toXMLString(buffer);
    if (form == DateForm::minuteBlank || form == DateForm::secondBlank)
        buffer[10] = ' ';
    const bool minutes = form == DateForm::minuteBlank || form == DateForm::minuteT;
    text.append(buffer, form == DateForm::day ? 10U : minutes ? 16U : 19U);
}

} // namespace

void ColumnBuilder::reserve(std::size_t rows) {
    if (texts_) {
        texts_->reserve(rows);
        return;
    }
    words_.reserve(rows);
    shapes_.reserve(rows);
}

void ColumnBuilder::add(std::string_view text) {
    if (kind_ == Kind::text) {
        texts_->add(text);
        return;
    }
    if (text.empty() || is_blank(text)) {
        addEmpty(text);
        return;
    }
    while (!addAs(kind_, text))
        changeKind();
    filled_ = true;
}

/// Goes on to the next kind that was not tried yet.
void ColumnBuilder::changeKind() {
    if (filled_)
        return startAgain();
    if (kind_ != Kind::none)
        tried_ = static_cast<std::uint8_t>(tried_ | 1U << static_cast<unsigned>(kind_));
    auto next = Kind::digits;
    while (next != Kind::text && tried(next))
        next = static_cast<Kind>(static_cast<std::uint8_t>(next) + 1);
    kind_ = next;
    if (kind_ == Kind::text)
        startAgain();
}

/// Takes a cell as one of a kind; false when it is of another.
bool ColumnBuilder::addAs(Kind kind, std::string_view text) {
    switch (kind) {
    case Kind::digits:
        return text.size() == Date::kTextLength && addDate(text, true);
    case Kind::localNumber:
        return forms_ != nullptr && addLocalNumber(text);
    case Kind::number:
        return addNumber(text);
    case Kind::localDate:
        return forms_ != nullptr && addLocalDate(text);
    case Kind::date:
        return addDate(text, false);
    case Kind::boolean:
        return addBoolean(text);
    case Kind::text:
        texts_->add(text);
        return true;
    case Kind::none:
        break;
    }
    return false;
}

bool ColumnBuilder::addNumber(std::string_view text) {
    const std::string_view bare = without_blanks(text);
    const auto number = read_number(bare);
    if (!number || number->padded)
        return false;
    words_.addNumber(*number);
    keepShape(number->plain && bare.size() == text.size() ? number->digits : kOddShape, text);
    return true;
}

bool ColumnBuilder::addLocalNumber(std::string_view text) {
    const std::string_view bare = without_blanks(text);
    const auto number = forms_->number(bare);
    if (!number || forms_->isPadded())
        return false;
    words_.addNumber(number_text(*number));
    keepShape(bare.size() == text.size() ? forms_->shapeOf(*number).value_or(kOddShape) : kOddShape, text);
    return true;
}

bool ColumnBuilder::addDate(std::string_view text, bool digits) {
    const std::string_view bare = without_blanks(text);
    const auto read = read_date(bare);
    if (!read || (read->form == DateForm::digits) != digits)
        return false;
    words_.addWord(static_cast<std::int64_t>(read->date.ticks()));
    const bool shaped = read->form != DateForm::fraction && bare.size() == text.size();
    keepShape(shaped ? static_cast<Shape>(read->form) : kOddShape, text);
    return true;
}

bool ColumnBuilder::addLocalDate(std::string_view text) {
    const std::string_view bare = without_blanks(text);
    const auto read = forms_->date(bare);
    if (!read)
        return false;
    words_.addWord(static_cast<std::int64_t>(read->ticks()));
    keepShape(bare.size() == text.size() ? forms_->shapeOf(*read).value_or(kOddShape) : kOddShape, text);
    return true;
}

bool ColumnBuilder::addBoolean(std::string_view text) {
    const auto found = std::ranges::find(kBooleans, text);
    if (found == kBooleans.end())
        return false;
    const auto index = found - kBooleans.begin();
    words_.addWord(index % 2 == 0 ? 1 : 0);
    keepShape(static_cast<Shape>(index), text);
    return true;
}

void ColumnBuilder::addEmpty(std::string_view text) {
    hasEmpty_ = true;
    words_.addEmpty();
    keepShape(text.empty() ? kEmptyShape : kOddShape, text);
}

void ColumnBuilder::keepShape(Shape shape, std::string_view text) {
    shapes_.push_back(shape);
    if (shape == kOddShape) [[unlikely]]
        odd_.emplace_back(shapes_.size() - 1, text);
}

/// Makes the texts again that were read, and takes them as cells of the kinds that are left.
void ColumnBuilder::startAgain() {
    ColumnBuilder again(forms_, stop_);
    again.tried_ = static_cast<std::uint8_t>(tried_ | 1U << static_cast<unsigned>(kind_));
    const bool asTexts = kind_ == Kind::text || again.tried_ >= (1U << static_cast<unsigned>(Kind::text)) - 1;
    if (asTexts) {
        again.kind_ = Kind::text;
        again.texts_ = std::make_unique<TextCells>();
    }
    again.reserve(shapes_.capacity());
    std::string text;
    auto odd = odd_.begin();
    for (std::size_t row = 0; row < shapes_.size(); ++row) {
        if (row % kAskedRows == 0) {
            stop_.check();
            Thread::check();
        }
        if (shapes_[row] == kOddShape) {
            again.add((odd++)->second);
        } else {
            text.clear();
            writeCell(row, text);
            again.add(text);
        }
    }
    *this = std::move(again);
}

/// Appends the text of a cell whose shape says how it was written.
void ColumnBuilder::writeCell(std::size_t row, std::string& text) const {
    const Shape shape = shapes_[row];
    if (shape == kEmptyShape)
        return;
    switch (kind_) {
    case Kind::localNumber:
        forms_->write(text, numberOf(row), shape);
        break;
    case Kind::number:
        text += plainText(row, shape);
        break;
    case Kind::boolean:
        text += kBooleans[shape];
        break;
    case Kind::localDate:
        forms_->write(text, dateOf(row), shape);
        break;
    default:
        append_date(text, dateOf(row), static_cast<DateForm>(shape));
    }
}

std::string ColumnBuilder::plainText(std::size_t row, int digits) const {
    const auto scale = static_cast<std::uint32_t>(digits);
    const std::int64_t word = words_.isWide() ? numberOf(row).scaled(scale).value_or(0)
                                              : words_.word(row) / kTens[words_.scale() - scale];
    char buffer[24];
    return {buffer, write_number(buffer, word, scale)};
}

Numeric ColumnBuilder::numberOf(std::size_t row) const {
    return words_.isWide() ? *words_.value(row).asNumeric()
                           : Numeric::fromScaled(words_.word(row), words_.scale());
}

BuiltColumn ColumnBuilder::finish() {
    const bool unknown = kind_ == Kind::none;
    if (unknown) { // nothing is filled: whatever comes later may have any type
        kind_ = Kind::text;
        startAgain();
    }
    const auto domain = [this](const GUID& type) {
        return hasEmpty_ ? TypeDomain{kUndefinedType, type} : TypeDomain(type);
    };
    switch (kind_) {
    case Kind::text:
        return {unknown ? TypeDomain() : TypeDomain(kStringType), texts_->finish()};
    case Kind::localNumber:
    case Kind::number:
        return {domain(kNumberType), words_.numbers()};
    case Kind::boolean: {
        auto dictionary = std::make_unique<ValueDictionary>();
        const ValueDictionary::Code codes[] = {dictionary->add(Value(false)), dictionary->add(Value(true))};
        std::vector<ValueDictionary::Code> cells(words_.size());
        for (std::size_t row = 0; row < cells.size(); ++row)
            cells[row] = words_.word(row) == WordCells::kEmpty ? 0 : codes[words_.word(row)];
        return {domain(kBooleanType), CellColumn::ofCodes(std::move(dictionary), std::move(cells))};
    }
    default:
        return {domain(kDateType), words_.dates()};
    }
}

} // namespace core
