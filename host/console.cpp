// SPDX-License-Identifier: Apache-2.0
#include "host/console.h"

#include <core/strings/term.h>

#include <unistd.h>

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
            return value.starts_with("ru") ? Language::russian : Language::english;
    }
    return Language::english;
}

bool colour_of_environment() {
    const std::string_view terminal = variable("TERM");
    return variable("NO_COLOR").empty() && !terminal.empty() && terminal != "dumb" &&
           isatty(STDERR_FILENO) == 1;
}

} // namespace host
