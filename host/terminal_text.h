// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <string>
#include <string_view>

/// Text that came from elsewhere (a script, a file, an error) on its way to a terminal.
namespace host {

/// A message longer than this is shown without its middle: the URL or the token in it may be of any length.
inline constexpr std::size_t kMessageShown = 1000;

/// The text in UTF-8, of at most about `most` units, with U+FFFD for control characters other than the tab
/// and for those that turn the direction of writing: nothing that is shown may steer the terminal.
[[nodiscard]] std::string terminal_text(core::wstring_view text, std::size_t most = kMessageShown);

/// The columns that a character takes: none for what combines with the one before, two for wide ones.
[[nodiscard]] int terminal_width(char32_t c);
/// The columns that a text in UTF-8 takes.
[[nodiscard]] std::size_t terminal_width(std::string_view text);

/// A text in UTF-8 and the columns that it takes.
struct FittedText {
    std::string text;
    std::size_t columns = 0;
};

/// The text in one line of at most `width` columns; where it is longer, its end is "…". A line break shows as
/// "↵", a tab as a blank; other characters that would steer the terminal, or turn the direction of writing
/// for what follows, as U+FFFD.
[[nodiscard]] FittedText fitted_text(core::wstring_view text, std::size_t width);

} // namespace host
