// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace host {

/// Returns what is wrong with a command line that could not be read, in the language of the console: the
/// word, and the nearest one that could stand there. `app` has read as much of it as it could.
[[nodiscard]] std::string usage_text(const CLI::App& app, const CLI::ParseError& error,
                                     const Console& console);

/// Shows that, and how to ask for the help on what was meant: "corehost list fmt --help".
ExitCode refuse_usage(const CLI::App& app, const CLI::ParseError& error, Console& console);

} // namespace host
