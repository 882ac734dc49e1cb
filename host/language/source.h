// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstdint>

namespace core::script {

/// A piece of a source text, in code units.
struct Span {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;

    [[nodiscard]] std::uint32_t end() const noexcept { return offset + length; }
    friend bool operator==(const Span&, const Span&) = default;
};

/// Both count from 1; the column counts characters, a pair of surrogates as one.
struct Position {
    std::size_t line = 1;
    std::size_t column = 1;
    friend bool operator==(const Position&, const Position&) = default;
};

/// A script's text and the name it is known to the user by.
class Source {
  public:
    /// The largest text, in code units; offsets fit 32 bits with room to spare.
    static constexpr std::size_t kMaxSize = 1U << 28;

    /// Throws ContextException for a text above kMaxSize.
    Source(wstring name, wstring text);

    /// Adds a line, as a console does to what has no end yet. Spans stay valid, what text() returned does
    /// not. Throws ContextException when the text would pass kMaxSize.
    void append(wstring_view line);

    [[nodiscard]] const wstring& name() const noexcept { return name_; }
    [[nodiscard]] wstring_view text() const noexcept { return text_; }
    [[nodiscard]] wstring_view text(Span span) const noexcept {
        return text().substr(span.offset, span.length);
    }

    /// Found by counting from the start, which only a message does.
    [[nodiscard]] Position position(std::uint32_t offset) const noexcept;
    /// The line around an offset, without its end.
    [[nodiscard]] Span line_at(std::uint32_t offset) const noexcept;

  private:
    wstring name_;
    wstring text_;
};

/// A line ends with LF, CR or both.
[[nodiscard]] constexpr bool is_line_end(wchar c) noexcept {
    return c == u'\n' || c == u'\r';
}

} // namespace core::script
