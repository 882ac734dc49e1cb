// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/program.h"
#include "tests/support/environment.h"
#include "tests/support/folder_test.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace host {

struct Answer {
    ExitCode code;
    std::string out;
    std::string err;
};

/// The programs that tests start have no settings, whatever those of the person who runs the tests are.
inline void hide_settings() {
    for (const char* const folder : {support::kUserConfigFolder, support::kSystemConfigFolder})
        support::set_environment(folder, "/nonexistent");
}
inline const bool kSettingsHidden = (hide_settings(), true);

inline Answer corehost(std::vector<std::string> arguments, const std::string& input = {},
                       bool colour = false) {
    std::istringstream in(input);
    std::ostringstream out, err;
    Console console{in, out, err, Language::english, colour};
    const ExitCode code = run_program(std::move(arguments), console);
    return {code, out.str(), err.str()};
}

} // namespace host
