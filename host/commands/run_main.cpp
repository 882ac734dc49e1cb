// SPDX-License-Identifier: Apache-2.0
#include "host/commands/program.h"
#include "host/terminal/system_terminal.h"

#include <iostream>
#include <utility>

namespace host {

int run_main(int count, char** arguments) {
    std::vector<std::string> given = begin_process(count, arguments);
    std::ios::sync_with_stdio(false);
    Console console{std::cin, std::cout, std::cerr, language_of_environment(), colour_of_environment()};
    console.live = is_terminal(Stream::output);
    console.terminal = terminal_of_environment();
    console.colours = colours_of_environment();
    return static_cast<int>(run_program(std::move(given), console));
}

} // namespace host
