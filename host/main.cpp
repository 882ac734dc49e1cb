// SPDX-License-Identifier: Apache-2.0
#include "host/program.h"

#include <iostream>

int main(int argc, char** argv) {
    using namespace host;
    std::ios::sync_with_stdio(false);
    Console console{std::cin, std::cout, std::cerr, language_of_environment(), colour_of_environment()};
    console.terminal = terminal_of_environment();
    return static_cast<int>(run_program({argv + 1, argv + argc}, console));
}
