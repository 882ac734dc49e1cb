// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/cell_column.h"

#include "core/values/value_hash.h"

#include <algorithm>
#include <array>

namespace core {
namespace {

using Form = CellColumn::Form;

/// A dictionary saves memory and time up to one value for so many rows; the first values are always free.
constexpr std::size_t kFreeCodes = 4096;
constexpr std::size_t kRowsPerCode = 4;
/// So many different values a dictionary may come to have, when the values go on repeating as they do.
constexpr std::size_t kExpectedCodes = std::size_t{1} << 18;

/// Whether a dictionary that has so many codes after so many rows is worth keeping. At the beginning almost
/// every row of a column of many names is new. How often they repeat tells how many there are: of n rows with
/// d equally frequent values, about n²/2d repeat an earlier one. Names that never repeat are given up early.
bool saves(std::size_t codes, std::size_t rows) noexcept {
    if (codes < kFreeCodes + rows / kRowsPerCode)
        return true;
    const std::size_t repeated = rows - std::min(codes, rows);
    const std::uint64_t expected =
        rows < kExpectedCodes ? std::uint64_t{rows} * rows / (2 * kExpectedCodes) : rows / 2;
    return repeated >= expected;
}

std::uint64_t hash_word(std::uint64_t word) noexcept {
    return table_hash_step(table_hash_seed(), word);
}

Form plain_form(const Value& value) noexcept {
    return value.kind() == ValueKind::number ? Form::numbers
           : value.kind() == ValueKind::date ? Form::dates
                                             : Form::values;
}

constexpr std::array<std::int64_t, Numeric::kMaxScale + 1> kTens = [] {
    std::array<std::int64_t, Numeric::kMaxScale + 1> tens{1};
    for (std::size_t i = 1; i < tens.size(); ++i)
        tens[i] = tens[i - 1] * 10;
    return tens;
}();

/// The largest whole number that fits a word of each scale.
constexpr auto kLargest = [] {
    std::array<std::int64_t, kTens.size()> largest{};
    for (std::size_t i = 0; i < largest.size(); ++i)
        largest[i] = std::numeric_limits<std::int64_t>::max() / kTens[i];
    return largest;
}();

/// Returns a whole number as a word of some scale; none when it does not fit.
std::optional<std::int64_t> scaled_whole(std::int64_t whole, std::uint32_t scale) noexcept {
    const std::int64_t largest = kLargest[scale];
    return whole <= largest && whole >= -largest ? std::optional(whole * kTens[scale]) : std::nullopt;
}

std::uint32_t fraction_digits(const Numeric& number) noexcept {
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    return static_cast<std::uint32_t>(std::min<std::int64_t>(precision, Numeric::kMaxScale + 1));
}

} // namespace

bool CellColumn::isCodable(const Value& value) noexcept {
    switch (value.kind()) {
    case ValueKind::number:
    case ValueKind::date:
    case ValueKind::object:
        return false;
    default:
        return true;
    }
}

CellColumn CellColumn::ofWords(Form form, std::uint32_t scale, std::vector<std::int64_t> words) noexcept {
    CellColumn column(form, scale, nullptr);
    column.size_ = words.size();
    column.words_ = std::move(words);
    return column;
}

CellColumn CellColumn::ofCodes(std::unique_ptr<ValueDictionary> dictionary,
                               std::vector<Code> codes) noexcept {
    CellColumn column(Form::coded, 0, std::move(dictionary));
    column.size_ = codes.size();
    column.codes_ = std::move(codes);
    return column;
}

CellColumn CellColumn::ofValues(std::vector<Value> values) noexcept {
    CellColumn column(Form::values, 0, nullptr);
    column.size_ = values.size();
    column.values_ = std::move(values);
    return column;
}

Value CellColumn::get(RowId row) const {
    switch (form_) {
    case Form::coded:
        return (*dictionary_)[codes_[row]];
    case Form::values:
        return values_[row];
    case Form::numbers:
        break;
    case Form::dates:
        return words_[row] != kEmptyWord ? Value(Date(static_cast<std::uint64_t>(words_[row]))) : Value();
    }
    if (words_[row] == kEmptyWord)
        return {};
    return scale_ == 0 ? Value(words_[row]) : Value(Numeric::fromScaled(words_[row], scale_));
}

/// Returns the word of a value in a column of words; none when the form cannot hold it.
std::optional<std::int64_t> CellColumn::wordOf(const Value& value) const noexcept {
    if (value.isUndefined())
        return kEmptyWord;
    if (form_ == Form::numbers) {
        if (const auto whole = value.asSmallWhole())
            return scaled_whole(*whole, scale_);
        const auto number = value.asNumeric();
        return number ? number->scaled(scale_) : std::nullopt;
    }
    const Date* const date = value.asDate();
    const bool holds = date != nullptr && date->ticks() <= std::numeric_limits<std::int64_t>::max();
    return holds ? std::optional(static_cast<std::int64_t>(date->ticks())) : std::nullopt;
}

CellProbe CellColumn::probe(const Value& value) const noexcept {
    if (form_ == Form::values)
        return {.possible = true, .value = &value};
    if (form_ == Form::coded) {
        const auto code = dictionary_->find(value);
        return {.possible = code.has_value(), .word = code.value_or(0)};
    }
    const auto word = wordOf(value);
    return {.possible = word.has_value(), .word = word.value_or(0)};
}

bool CellColumn::matches(RowId row, const CellProbe& probe) const noexcept {
    switch (form_) {
    case Form::coded:
        return codes_[row] == probe.word;
    case Form::values:
        return values_[row].equals(*probe.value);
    default:
        return words_[row] == probe.word;
    }
}

bool CellColumn::equal(RowId a, RowId b) const noexcept {
    return visit([=](auto cells) { return cells[a] == cells[b]; });
}

std::uint64_t CellColumn::hash(RowId row) const noexcept {
    switch (form_) {
    case Form::coded:
        return hash_word(codes_[row]);
    case Form::values:
        return value_table_hash(values_[row]);
    default:
        return hash_word(static_cast<std::uint64_t>(words_[row]));
    }
}

std::uint64_t CellColumn::hash(const CellProbe& probe) const noexcept {
    return form_ == Form::values ? value_table_hash(*probe.value)
                                 : hash_word(static_cast<std::uint64_t>(probe.word));
}

void CellColumn::grow(std::size_t size) {
    if (size <= size_)
        return;
    if (form_ == Form::coded)
        codes_.resize(size);
    else if (form_ == Form::values)
        values_.resize(size);
    else
        words_.resize(size, kEmptyWord);
    size_ = size;
}

bool CellColumn::exchange(RowId row, Value& value) {
    if (form_ != Form::values)
        return put(row, value); // no such form holds objects
    swap(values_[row], value);
    return false;
}

void CellColumn::exchange(const RowOrder& rows, std::span<Value> values) {
    std::vector<RowId> done;
    done.reserve(values.size());
    try {
        rows.walk([&](RowId row) {
            if (done.size() == values.size())
                return false;
            Value& value = values[done.size()];
            Value old = get(row);
            exchange(row, value);
            swap(value, old);
            done.push_back(row);
            return true;
        });
    } catch (...) {
        // The form of now holds whatever the column held before: putting that back needs no memory.
        for (std::size_t i = 0; i < done.size(); ++i)
            exchange(done[i], values[i]);
        throw;
    }
}

bool CellColumn::put(RowId row, const Value& value) {
    switch (form_) {
    case Form::coded:
        return putCode(row, value);
    case Form::values:
        values_[row] = value;
        return false;
    default:
        return putWord(row, value);
    }
}

bool CellColumn::append(const Value& value) {
    // What the form holds as it is goes straight to its place: most rows of a table are made so.
    if (form_ == Form::values) {
        values_.push_back(value);
        ++size_;
        return false;
    }
    if (form_ == Form::coded) {
        if (const auto code = isCodable(value) ? dictionary_->find(value) : std::nullopt) {
            codes_.push_back(*code);
            ++size_;
            return false;
        }
    } else if (const auto word = wordOf(value)) {
        words_.push_back(*word);
        ++size_;
        return false;
    }
    const auto row = static_cast<RowId>(size_);
    grow(size_ + 1);
    return put(row, value);
}

bool CellColumn::putCode(RowId row, const Value& value) {
    if (isCodable(value)) {
        const auto known = dictionary_->find(value);
        if (!known && !saves(dictionary_->size(), size_))
            return putInForm(Form::values, 0, row, value);
        codes_[row] = known ? *known : dictionary_->add(value);
        return false;
    }
    if (dictionary_->size() > 1)
        return putInForm(Form::values, 0, row, value);
    // Only Undefined so far: the column gets the form of its first value.
    const auto number = value.asNumeric();
    return putInForm(plain_form(value), number ? fraction_digits(*number) : 0, row, value);
}

bool CellColumn::putWord(RowId row, const Value& value) {
    if (const auto word = wordOf(value)) {
        words_[row] = *word;
        return false;
    }
    const auto number = value.asNumeric();
    if (form_ == Form::numbers && number) {
        const std::uint32_t scale = fraction_digits(*number);
        const auto word = scale > scale_ ? number->scaled(scale) : std::nullopt;
        if (word && rescale(scale)) {
            words_[row] = *word;
            return true;
        }
    }
    return putInForm(Form::values, 0, row, value);
}

/// Changes the form of a column of Undefined cells to a form of words, or any form to values, and then puts
/// the value in.
bool CellColumn::putInForm(Form form, std::uint32_t scale, RowId row, const Value& value) {
    if (form != Form::values) {
        CellColumn plain(form, scale, nullptr);
        plain.grow(size_);
        if (const auto word = plain.wordOf(value)) {
            plain.words_[row] = *word;
            std::swap(*this, plain);
            return true;
        }
    }
    toValues();
    values_[row] = value;
    return true;
}

/// Multiplies all words to a larger scale. Returns false, with nothing changed, when one would not fit.
bool CellColumn::rescale(std::uint32_t scale) {
    if (scale > Numeric::kMaxScale)
        return false;
    const std::int64_t factor = kTens[scale - scale_];
    const std::int64_t largest = kLargest[scale - scale_];
    const auto fits = [=](std::int64_t word) {
        return word == kEmptyWord || (word <= largest && word >= -largest);
    };
    if (!std::all_of(words_.begin(), words_.end(), fits))
        return false;
    for (std::int64_t& word : words_)
        word = word == kEmptyWord ? word : word * factor;
    scale_ = static_cast<std::uint8_t>(scale);
    return true;
}

void CellColumn::toValues() {
    CellColumn values(Form::values, 0, nullptr);
    values.values_.reserve(std::max(size_, codes_.capacity()));
    for (std::size_t row = 0; row < size_; ++row)
        values.values_.push_back(get(static_cast<RowId>(row)));
    values.size_ = size_;
    std::swap(*this, values);
}

void CellColumn::fill(std::size_t size, const Value& value) {
    CellColumn filled;
    Value first(value);
    filled.grow(1);
    filled.exchange(0, first);
    filled.visitStore([&](auto& cells) {
        const auto cell = cells.front();
        cells.assign(size, cell);
    });
    filled.size_ = size;
    std::swap(*this, filled);
}

CellColumn CellColumn::makeRoom(std::size_t size) const {
    CellColumn room(form_, scale_, nullptr);
    room.visitStore([&](auto& cells) { cells.reserve(size); });
    return room;
}

CellColumn CellColumn::copy(RowRange rows) const {
    if (form_ == Form::coded && rows.size() < dictionary_->size() / 2)
        return copyCodes(rows);
    CellColumn out = makeRoom(rows.size());
    if (dictionary_)
        out.dictionary_ = std::make_unique<ValueDictionary>(*dictionary_);
    out.visitStore([&]<class Cell>(std::vector<Cell>& to) {
        visit([&](auto from) {
            if constexpr (std::is_same_v<const Cell, typename decltype(from)::element_type>)
                rows.forEach([&](RowId row) { to.push_back(from[row]); });
        });
    });
    out.size_ = rows.size();
    return out;
}

/// Copies few cells with those values alone that they have.
CellColumn CellColumn::copyCodes(RowRange rows) const {
    auto dictionary = std::make_unique<ValueDictionary>();
    std::vector<Code> codes;
    codes.reserve(rows.size());
    rows.forEach([&](RowId row) { codes.push_back(dictionary->add((*dictionary_)[codes_[row]])); });
    return ofCodes(std::move(dictionary), std::move(codes));
}

void CellColumn::take(std::span<const RowId> rows, CellColumn&& room) noexcept {
    const auto move_cells = [&](auto& from, auto& to) {
        for (const RowId row : rows)
            to.push_back(std::move(from[row]));
    };
    if (form_ == Form::coded)
        move_cells(codes_, room.codes_);
    else if (form_ == Form::values)
        move_cells(values_, room.values_);
    else
        move_cells(words_, room.words_);
    room.size_ = rows.size();
    room.dictionary_ = std::move(dictionary_);
    std::swap(*this, room);
}

} // namespace core
