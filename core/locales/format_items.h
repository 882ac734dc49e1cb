// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>
#include <core/strings/term.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// One `name=value` of a format string.
struct FormatItem {
    std::size_t term = 0;     ///< the index of the name among the names that are known
    wstring_view name;        ///< as it is written, borrowed from the format string
    std::size_t position = 0; ///< of the name in the format string, in units counted from 1
    wstring value;            ///< without quotes

    /// The value as a text that a reader can find: an empty text is refused, and so is white space at the
    /// front, since readers skip it.
    [[nodiscard]] const wstring& text() const;
    /// The value as a whole number of up to four digits, from `least` to `most`.
    [[nodiscard]] std::size_t number(std::size_t least, std::size_t most) const;
    /// The value as the key of a locale that is known.
    [[nodiscard]] Locale locale() const;
    /// Throws the CtorException for a value that makes no sense.
    [[noreturn]] void refuse() const;
};

/// The least and the most digits: "2", "..2", "2..", "1..3".
struct DigitRange {
    static constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

    std::size_t least = 0;
    std::size_t most = kNoLimit;

    /// The range that an item gives, whose numbers are `smallest` to 1000. Refuses anything else.
    [[nodiscard]] static DigitRange of(const FormatItem& item, std::size_t smallest);
};

/// Takes the text between the apostrophes at the front of `rest`, in which two are one. None when it has no
/// end; `rest` is then what it was.
[[nodiscard]] std::optional<wstring> take_quoted(wstring_view& rest);

/// The items of `format`, in order, whose names are among `known`, in English or Russian and in any case.
/// They borrow from `format`. CtorException with the place when the string is malformed, or has an item that
/// is not known or comes twice.
[[nodiscard]] std::vector<FormatItem> format_items(wstring_view format, std::span<const NamePair> known);

/// The index of the word that `text` is, in English or Russian and in any case; none for any other.
[[nodiscard]] std::optional<std::size_t> find_word(wstring_view text, std::span<const NamePair> words);

} // namespace core
