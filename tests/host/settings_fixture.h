// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/host/program_fixture.h"
#include "tests/support/file_helpers.h"

#include <string>
#include <utility>
#include <vector>

namespace host {

/// "corehost settings" with files in a folder of its own.
class SettingsCommand : public FolderTest {
  protected:
    void SetUp() override {
        if (!core::test::replaces_open_files(path("probe")))
            GTEST_SKIP() << "a file that is open cannot be replaced here, which settings need";
    }
    static ExitCode settings(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "settings");
        return corehost(std::move(arguments)).code;
    }

  private:
    const support::EnvironmentVariable user_{support::kUserConfigFolder, path("config").c_str()};
    const support::EnvironmentVariable system_{support::kSystemConfigFolder, path("etc").c_str()};
};

} // namespace host
