// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/console.h"

#include <core/strings/term.h>

#include <sys/ioctl.h>
#include <unistd.h>

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
    return Language::english;
}

bool colour_of_environment() {
    const std::string_view terminal = variable("TERM");
    return variable("NO_COLOR").empty() && !terminal.empty() && terminal != "dumb" &&
           isatty(STDERR_FILENO) == 1;
}

bool terminal_of_environment() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

std::size_t line_width(const Console& console) {
    constexpr std::size_t kWithoutTerminal = 100;
    const std::string_view wanted = variable("COLUMNS");
    std::size_t width = 0;
    if (std::from_chars(wanted.data(), wanted.data() + wanted.size(), width).ec == std::errc() && width > 0)
        return width;
    winsize size{};
    if (console.terminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return kWithoutTerminal;
}

} // namespace host
