// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <string>
#include <string_view>

/// Text in columns of equal width, as terminals and fixed-width fonts show it.
namespace host {

/// Whether a character would steer what shows it, or turn the direction of writing for what follows.
[[nodiscard]] bool steers(char32_t c) noexcept;

/// The columns that a character takes: none for what combines with the one before, two for wide ones.
[[nodiscard]] int column_count(char32_t c);
/// The columns that a text in UTF-8 takes.
[[nodiscard]] std::size_t column_count(std::string_view text);

/// A text in UTF-8 and the columns that it takes.
struct FittedText {
    std::string text;
    std::size_t columns = 0;
};

/// The text in one line of at most `width` columns; where it is longer, its end is "…". A line break shows as
/// "↵", a tab as a blank; characters that steer show as U+FFFD.
[[nodiscard]] FittedText fitted_text(core::wstring_view text, std::size_t width);

} // namespace host
