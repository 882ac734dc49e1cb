// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/source.h"

namespace core::script {

enum class TokenKind : std::uint8_t {
    end,
    name,
    number,
    string,
    date,
    // signs
    open,         // (
    close,        // )
    openBracket,  // [
    closeBracket, // ]
    comma,
    dot,
    semicolon,
    plus,
    minus,
    times,
    divide,
    modulo,
    equal,
    notEqual,
    less,
    lessEqual,
    greater,
    greaterEqual,
    // keywords
    keyIf,
    keyThen,
    keyElsIf,
    keyElse,
    keyEndIf,
    keyFor,
    keyEach,
    keyIn,
    keyTo,
    keyWhile,
    keyDo,
    keyEndDo,
    keyBreak,
    keyContinue,
    keyReturn,
    keyAnd,
    keyOr,
    keyNot,
    keyNew,
    keyTrue,
    keyFalse,
    keyUndefined,
    keyNull,
    // words that are names wherever no statement of theirs can stand
    wordProcedure,
    wordEndProcedure,
    wordFunction,
    wordEndFunction,
    wordVal,
    wordExport,
    wordVar,
    wordTry,
    wordExcept,
    wordEndTry,
    wordRaise,
    wordImport,
    wordAddHandler,
    wordRemoveHandler,
};

struct Token {
    TokenKind kind = TokenKind::end;
    Span span;
};

/// The keyword that a word is, in either language and without regard to case; `name` for any other word.
[[nodiscard]] TokenKind keyword(wstring_view word);
/// The same for the words that are keywords in some places alone; `name` for any other word.
[[nodiscard]] TokenKind soft_keyword(wstring_view word);
/// What a sign or a keyword of either kind is written as, a keyword in both languages: "Then/Тогда". Empty
/// for other kinds.
[[nodiscard]] wstring spelling(TokenKind kind);
/// A keyword of either kind in the language of `alias`: kEnglish or kRussian.
[[nodiscard]] wstring_view keyword_name(TokenKind kind, int alias);
[[nodiscard]] constexpr bool is_keyword(TokenKind kind) noexcept {
    return kind >= TokenKind::keyIf && kind <= TokenKind::keyNull;
}

} // namespace core::script
