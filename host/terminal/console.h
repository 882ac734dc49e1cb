// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/table_text.h>
#include <core/locales/settings.h>
#include <core/reports/report.h>
#include <core/runtime/locale.h>

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string_view>

namespace host {

enum class Language { english, russian };

/// The language as an alias of names: core::kEnglish or core::kRussian.
[[nodiscard]] int alias_of(Language language) noexcept;

/// Where a command reads and writes, and how: data to `out`, messages to `err`.
struct Console {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    Language language = Language::english;
    bool colour = false;   ///< messages may be coloured
    bool json = false;     ///< data is written for programs
    bool live = false;     ///< somebody watches `out`: each value is shown when it is printed
    bool terminal = false; ///< `in` and `out` are a terminal, at which a user can be asked
    std::optional<core::Locale> locale = {}; ///< of formats, sorting and names; none: that of the language
    std::optional<core::TableForm> mode{};   ///< the form of tables, where one was asked for
    core::FormatSettings formats{};          ///< of numbers, dates and Booleans, where the user has set some
    bool history = true;                     ///< entries are kept for the next console
    core::TerminalColors colours{};          ///< those that reports have on `out`
};

/// How long lines may be: what COLUMNS says, else what the terminal says; without a terminal always the same.
[[nodiscard]] std::size_t line_width(const Console& console);

/// The language that the environment asks for: LC_ALL, LC_MESSAGES, LANG, the first that is set.
[[nodiscard]] Language language_of_environment();

/// Whether messages may be coloured: standard error is a terminal that knows
/// colours, and NO_COLOR is not set.
[[nodiscard]] bool colour_of_environment();

/// How many colours standard output knows: a terminal that TERM and COLORTERM say has some, where NO_COLOR is
/// not set.
[[nodiscard]] core::TerminalColors colours_of_environment();

/// Whether standard input and output are a terminal.
[[nodiscard]] bool terminal_of_environment();

} // namespace host
