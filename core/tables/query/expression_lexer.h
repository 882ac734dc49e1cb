// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_words.h"

#include <core/runtime/types.h>

namespace core {

enum class ExpressionTokenKind : std::uint8_t { end, name, number, text, date, parameter, sign };

/// A token; its text is borrowed from that of the expression.
struct ExpressionToken {
    ExpressionTokenKind kind = ExpressionTokenKind::end;
    ExpressionWord word = ExpressionWord::none; ///< of a name without brackets
    ExpressionPlace place{};
    /// A name without its brackets, a parameter without "&", a text or a date without its quotes, inner ones
    /// still doubled.
    wstring_view text{};
};

/// Cuts the text of an expression into tokens. The text is borrowed.
class ExpressionLexer {
  public:
    /// Throws ExpressionException for a text of more than kExpressionLength units.
    explicit ExpressionLexer(wstring_view text);
    /// Returns the next token; behind the last one, `end` for ever. Throws ExpressionException for what is
    /// not a token.
    [[nodiscard]] ExpressionToken next();

  private:
    [[nodiscard]] wchar at(std::size_t offset) const noexcept {
        return offset < text_.size() ? text_[offset] : u'\0';
    }
    [[nodiscard]] ExpressionPlace place() noexcept;
    void beginLine(std::size_t offset) noexcept;
    void skipBlanks() noexcept;
    [[nodiscard]] wstring_view word() noexcept;
    [[nodiscard]] wstring_view quoted(ExpressionPlace begin, wchar end);
    [[nodiscard]] wstring_view number(ExpressionPlace begin);
    [[nodiscard]] wstring_view sign(ExpressionPlace begin);

    wstring_view text_;
    std::size_t at_ = 0;
    // the place of `counted_`, in the line that `at_` stands in
    std::uint32_t line_ = 1;
    std::uint32_t column_ = 1;
    std::size_t counted_ = 0;
};

} // namespace core
