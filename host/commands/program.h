// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <string>
#include <vector>

namespace host {

/// corehost as a function: runs the command that `arguments` (without the program's name) ask for. Throws
/// nothing; every failure is a message on `console.err` and an exit code.
[[nodiscard]] ExitCode run_program(std::vector<std::string> arguments, Console& console);

/// The main() of corehost: run_program() on the streams of the process, in the language of its environment.
/// Returns the exit code.
[[nodiscard]] int run_main(int count, char** arguments);

} // namespace host
