// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/console.h"

#include "host/terminal/system_terminal.h"

#include <core/strings/term.h>

#include <charconv>
#include <cstdlib>

namespace host {
namespace {

std::string_view variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

int alias_of(Language language) noexcept {
    return language == Language::russian ? core::kRussian : core::kEnglish;
}

Language language_of_environment() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string_view value = variable(name);
        if (!value.empty())
            return value.substr(0, value.find_first_of("_-.@")) == "ru" ? Language::russian
                                                                        : Language::english;
    }
    return system_is_russian() ? Language::russian : Language::english;
}

bool colour_of_environment() {
    return variable("NO_COLOR").empty() && terminal_has_colours(Stream::error);
}

core::TerminalColors colours_of_environment() {
    using core::TerminalColors;
    if (!variable("NO_COLOR").empty() || !terminal_has_colours(Stream::output))
        return TerminalColors::none;
    const std::string_view depth = variable("COLORTERM"), terminal = variable("TERM");
    // A terminal without a name is the system's own, which knows all colours where it knows some.
    if (depth == "truecolor" || depth == "24bit" || terminal.ends_with("-direct") || terminal.empty())
        return TerminalColors::full;
    return terminal.find("256color") != std::string_view::npos ? TerminalColors::indexed
                                                               : TerminalColors::sixteen;
}

bool terminal_of_environment() {
    return is_terminal(Stream::input) && is_terminal(Stream::output);
}

std::size_t line_width(const Console& console) {
    constexpr std::size_t kWithoutTerminal = 100;
    const std::string_view wanted = variable("COLUMNS");
    std::size_t width = 0;
    if (std::from_chars(wanted.data(), wanted.data() + wanted.size(), width).ec == std::errc() && width > 0)
        return width;
    if (console.terminal)
        width = terminal_width(Stream::output);
    return width > 0 ? width : kWithoutTerminal;
}

} // namespace host
