// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <string>
#include <string_view>

/// Text in columns of equal width, as terminals and fixed-width fonts show it.
namespace core {

/// Returns whether a character would steer what shows it, or turn the direction of writing for what follows.
[[nodiscard]] CORE_API bool steers(char32_t c) noexcept;

/// Returns how many columns a character takes: none for what combines with the one before, two for wide ones.
[[nodiscard]] CORE_API int column_count(char32_t c);
/// Returns how many columns a text in UTF-8 takes.
[[nodiscard]] CORE_API std::size_t column_count(std::string_view text);

/// A text in UTF-8 and the columns that it takes.
struct FittedText {
    std::string text;        ///< in one line
    std::size_t columns = 0; ///< that it takes
};

/// Returns the text in one line of at most `width` columns; where it is longer, its end is "…". A line break
/// shows as "↵", a tab as a blank; characters that steer show as U+FFFD.
[[nodiscard]] CORE_API FittedText fitted_text(wstring_view text, std::size_t width);

} // namespace core
