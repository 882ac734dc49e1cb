// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/program.h"
#include "tests/support/folder_test.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

namespace host {

struct Answer {
    ExitCode code;
    std::string out;
    std::string err;
};

inline Answer corehost(std::vector<std::string> arguments, const std::string& input = {},
                       bool colour = false) {
    ::setenv("XDG_CONFIG_HOME", "/nonexistent", 0); // the settings of who runs the tests do not count
    ::setenv("XDG_CONFIG_DIRS", "/nonexistent", 0);
    std::istringstream in(input);
    std::ostringstream out, err;
    Console console{in, out, err, Language::english, colour};
    const ExitCode code = run_program(std::move(arguments), console);
    return {code, out.str(), err.str()};
}

} // namespace host
