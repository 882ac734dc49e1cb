// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/word_cells.h"

#include <algorithm>

namespace core {
namespace {

/// Multiplies a word by 10^`digits`; false, with the word unchanged, where the product does not fit.
bool shift(std::int64_t& word, std::uint32_t digits) noexcept {
    const std::int64_t largest = std::numeric_limits<std::int64_t>::max() / kTens[digits];
    if (word > largest || word < -largest)
        return false;
    word *= kTens[digits];
    return true;
}

} // namespace

void WordCells::addOther(const NumberText& number) {
    if (!wide_ && !number.wide) {
        std::int64_t word = number.word;
        if (number.digits <= scale_ ? shift(word, scale_ - number.digits) : rescale(number.digits)) {
            words_.push_back(word);
            return;
        }
    }
    widen();
    values_.emplace_back(number.wide ? *number.wide : Numeric::fromScaled(number.word, number.digits));
}

/// Multiplies all words to a larger scale; false, with nothing changed, when one would not fit.
bool WordCells::rescale(std::uint32_t scale) {
    const std::int64_t largest = std::numeric_limits<std::int64_t>::max() / kTens[scale - scale_];
    for (const std::int64_t word : words_) {
        if (word != kEmpty && (word > largest || word < -largest))
            return false;
    }
    for (std::int64_t& word : words_)
        word = word == kEmpty ? word : word * kTens[scale - scale_];
    scale_ = scale;
    return true;
}

void WordCells::widen() {
    if (wide_)
        return;
    values_.reserve(words_.capacity());
    for (const std::int64_t word : words_)
        values_.push_back(word == kEmpty ? Value() : Value(Numeric::fromScaled(word, scale_)));
    words_ = {};
    wide_ = true;
}

CellColumn WordCells::numbers() {
    return wide_ ? CellColumn::ofValues(std::move(values_))
                 : CellColumn::ofWords(CellColumn::Form::numbers, scale_, std::move(words_));
}

CellColumn WordCells::dates() {
    return CellColumn::ofWords(CellColumn::Form::dates, 0, std::move(words_));
}

} // namespace core
