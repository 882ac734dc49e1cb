// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

namespace host {

struct Answer {
    ExitCode code;
    std::string out;
    std::string err;
};

inline Answer corehost(std::vector<std::string> arguments, const std::string& input = {},
                       bool colour = false) {
    std::istringstream in(input);
    std::ostringstream out, err;
    Console console{in, out, err, Language::english, colour};
    const ExitCode code = run_program(std::move(arguments), console);
    return {code, out.str(), err.str()};
}

inline std::string text_of(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Has a folder of its own.
class FolderTest : public testing::Test {
  protected:
    ~FolderTest() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] const std::filesystem::path& folder() const noexcept { return folder_; }
    [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }
    /// Writes a file and returns its path.
    [[nodiscard]] std::string file(const std::string& name, std::string_view text) const {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return path(name);
    }

  private:
    std::filesystem::path folder_ = [] {
        std::string name = testing::TempDir() + "corehost-XXXXXX";
        return std::filesystem::path(mkdtemp(name.data()));
    }();
};

} // namespace host
