// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/script_error.h"
#include "host/language/token.h"

#include <functional>

namespace core::script {

/// Cuts a text into tokens, one at a time. The text must outlive it.
class Lexer {
  public:
    /// Adds lines to the text and returns all of it; the same as before when there are none.
    using More = std::function<wstring_view()>;

    /// Reads `text`; `more` is asked where that ends inside a string, and by extend().
    explicit Lexer(wstring_view text, More more = {});

    /// The next token; `end` at the end, as often as asked. Throws ScriptError for text that is not a token.
    Token next();
    /// The token that next() returns then.
    Token peek();
    /// Asks for more text, which next() then reads. False if no more comes.
    bool extend();

  private:
    void skip_blanks();
    Token number();
    Token string();
    Token date();
    Token sign();

    [[nodiscard]] wchar at(std::size_t i) const noexcept { return i < text_.size() ? text_[i] : u'\0'; }
    [[nodiscard]] Span since(std::size_t begin) const noexcept;

    wstring_view text_;
    More more_;
    std::size_t at_ = 0;
};

/// The characters that a string token stands for: without the quotes, a doubled quote single, and where the
/// text goes on in the next line behind a "|", one LF.
[[nodiscard]] wstring string_value(wstring_view token);

} // namespace core::script
