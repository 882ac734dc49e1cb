// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/program.h"
#include "tests/support/new_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// A temporary folder with a tree of three files, and the commands of "corehost container".
class Container : public testing::Test {
  protected:
    Container() : folder_(support::new_folder("core-container")) {
        write("tree/a.txt", "Hello");
        write("tree/sub/b.bin", std::string("\0\1\2", 3));
        write("tree/empty", "");
    }
    ~Container() override { std::filesystem::remove_all(folder_); }

    void write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
        return text.str();
    }
    [[nodiscard]] std::string path(const std::string& name) const {
        return (folder_ / name).generic_string();
    }

    /// Runs "corehost container ..."; what it writes is in out_ and err_.
    ExitCode run(std::vector<std::string> arguments) {
        std::istringstream in;
        return run(std::move(arguments), in, false);
    }
    ExitCode run(std::vector<std::string> arguments, std::istream& in, bool terminal) {
        std::ostringstream out;
        std::ostringstream err;
        Console console{in, out, err};
        console.terminal = terminal;
        if (arguments.at(0) != "run")
            arguments.insert(arguments.begin(), "container");
        const ExitCode code = run_program(std::move(arguments), console);
        out_ = out.str();
        err_ = err.str();
        return code;
    }

    std::filesystem::path folder_;
    std::string out_;
    std::string err_;
};

} // namespace host
