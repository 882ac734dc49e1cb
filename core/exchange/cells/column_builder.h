// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/exchange/cells/locale_forms.h"
#include "core/exchange/cells/text_cells.h"
#include "core/exchange/cells/word_cells.h"
#include "core/tables/convert/cell_text.h"

#include <core/runtime/threads/stop_token.h>
#include <core/types/type_domain.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace core {

/// A column with the type that its builder has found.
struct BuiltColumn {
    TypeDomain domain;
    CellColumn cells;
};

/// Makes a column of texts, of the narrowest type that all of them have: numbers, dates, Booleans, else
/// texts. Cells are converted as they come. Beside each stands how it was written, a byte, so that the texts
/// can be made again where a later cell is of another type; the few that cannot be made so are kept.
class ColumnBuilder {
  public:
    /// `forms` are those of the locale, null for none; borrowed. Where all texts are made again, `stop` is
    /// asked now and then.
    ColumnBuilder(LocaleForms* forms, StopToken stop) noexcept : forms_(forms), stop_(std::move(stop)) {}

    void reserve(std::size_t rows);
    /// Takes the next cell, in UTF-8. Throws ConverterException for bytes that are not UTF-8.
    void add(std::string_view text);
    [[nodiscard]] BuiltColumn finish();

  private:
    /// What the cells are so far. Each kind is tried in this order; one that a cell did not have is not tried
    /// again.
    enum class Kind : std::uint8_t { digits, localNumber, number, localDate, date, boolean, text, none };
    using Shape = std::uint8_t;

    [[nodiscard]] bool tried(Kind kind) const noexcept {
        return (tried_ >> static_cast<unsigned>(kind) & 1U) != 0;
    }
    [[nodiscard]] bool addAs(Kind kind, std::string_view text);
    [[nodiscard]] bool addNumber(std::string_view text);
    [[nodiscard]] bool addLocalNumber(std::string_view text);
    [[nodiscard]] bool addDate(std::string_view text, bool digits);
    [[nodiscard]] bool addLocalDate(std::string_view text);
    [[nodiscard]] bool addBoolean(std::string_view text);
    void addEmpty(std::string_view text);
    void keepShape(Shape shape, std::string_view text);
    void changeKind();
    void startAgain();
    void writeCell(std::size_t row, std::string& text) const;
    [[nodiscard]] std::string plainText(std::size_t row, int digits) const;
    [[nodiscard]] Numeric numberOf(std::size_t row) const;
    [[nodiscard]] Date dateOf(std::size_t row) const noexcept {
        return Date(static_cast<std::uint64_t>(words_.word(row)));
    }

    LocaleForms* forms_;
    StopToken stop_;
    Kind kind_ = Kind::none; // until a cell is filled
    std::uint8_t tried_ = 0; // a bit for each kind that did not hold
    bool hasEmpty_ = false;
    bool filled_ = false; // a cell has set the kind
    WordCells words_;
    std::vector<Shape> shapes_;                            // how each cell was written
    std::vector<std::pair<std::size_t, std::string>> odd_; // the texts of those that no shape says, by row
    std::unique_ptr<TextCells> texts_;
};

} // namespace core
