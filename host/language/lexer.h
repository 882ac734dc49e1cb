// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/script_error.h"
#include "host/language/token.h"

namespace host::script {

/// Cuts a text into tokens, one at a time. The text must outlive it.
class Lexer {
  public:
    explicit Lexer(core::wstring_view text) noexcept;

    /// The next token; `end` at the end, as often as asked. Throws ScriptError for what is no token.
    Token next();

  private:
    void skip_blanks();
    Token number();
    Token string();
    Token date();
    Token sign();

    [[nodiscard]] core::wchar at(std::size_t i) const noexcept { return i < text_.size() ? text_[i] : u'\0'; }
    [[nodiscard]] Span since(std::size_t begin) const noexcept;

    core::wstring_view text_;
    std::size_t at_ = 0;
};

/// The characters that a string token stands for: without the quotes, a doubled quote single, and where the
/// text goes on in the next line behind a "|", one LF.
[[nodiscard]] core::wstring string_value(core::wstring_view token);

} // namespace host::script
