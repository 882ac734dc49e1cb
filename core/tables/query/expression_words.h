// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_node.h"

#include <core/strings/term.h>

namespace core {

/// The words of the language of expressions. Only those from `opAnd` to `null` cannot be the name of a column
/// without brackets; the others are names where an operand stands.
enum class ExpressionWord : std::uint8_t {
    none,
    opAnd,
    opOr,
    opNot,
    isTrue,
    isFalse,
    undefined,
    null,
    in,
    between,
    like,
    escape,
    is,
    as,
    ascending,
    descending,
};

/// Returns the word that a text is, in either language and any case; `none` for any other text.
[[nodiscard]] ExpressionWord expression_word(wstring_view text);
/// Returns how a word is written in the language of `alias`, kEnglish or kRussian.
[[nodiscard]] wstring_view word_text(ExpressionWord word, int alias = kEnglish);
/// Returns how an operator is written.
[[nodiscard]] wstring_view operator_text(ExpressionOperator sign) noexcept;

} // namespace core
