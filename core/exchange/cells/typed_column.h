// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/exchange/cells/column_builder.h"

#include <core/tables/losses.h>

#include <optional>

namespace core {

/// Makes a column of texts, of a type that is given. What does not fit is lost, and said.
class TypedColumn {
  public:
    /// `forms` are those of the locale, null for the plain ones; borrowed.
    TypedColumn(TypeDomain domain, LocaleForms* forms);

    void reserve(std::size_t rows);
    /// Takes the next cell, in UTF-8. Returns why it did not keep the text, if so: a text without a reading
    /// leaves it empty, any other is kept as far as the type goes. Throws ConverterException for bytes that
    /// are not UTF-8.
    [[nodiscard]] std::optional<LossReason> add(std::string_view text);
    /// A column with empty cells has Undefined among its types.
    [[nodiscard]] BuiltColumn finish();

  private:
    enum class Store : std::uint8_t { numbers, dates, texts, any };

    [[nodiscard]] std::optional<LossReason> addNumber(std::string_view text);
    [[nodiscard]] std::optional<LossReason> addDate(std::string_view text);
    [[nodiscard]] std::optional<LossReason> addText(std::string_view text);
    [[nodiscard]] std::optional<LossReason> addAny(std::string_view text);
    [[nodiscard]] bool fits(const NumberText& number) const noexcept;
    void addEmpty();

    TypeDomain domain_;
    LocaleForms* forms_;
    Store store_;
    bool limited_; // numbers have qualifiers
    bool hasEmpty_ = false;
    WordCells words_;
    TextCells texts_;
    CellColumn any_;
    wstring scratch_;
};

} // namespace core
