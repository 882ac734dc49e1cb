// SPDX-License-Identifier: Apache-2.0
#include "tests/host/container_fixture.h"

#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>

namespace host {
namespace {

TEST_F(Container, WhatDoesNotFitOnTheDiskLeavesNothing) {
    // Runs a command while no file may grow beyond a few bytes. The process may write again when it ends.
    const auto within = [this](std::vector<std::string> words) {
        const struct rlimit tight = {100, RLIM_INFINITY};
        const struct rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
        const int result =
            ::setrlimit(RLIMIT_FSIZE, &tight) == 0 ? static_cast<int>(run(std::move(words))) : -1;
        return ::setrlimit(RLIMIT_FSIZE, &none) == 0 ? result : -1;
    };
    EXPECT_EXIT(::_exit(within({"create", path("c.st")})),
                testing::ExitedWithCode(static_cast<int>(ExitCode::io)), "");
    EXPECT_FALSE(std::filesystem::exists(path("c.st")));
    write("empty.st", "");
    EXPECT_EXIT(::_exit(within({"put", path("empty.st"), path("tree/a.txt")})),
                testing::ExitedWithCode(static_cast<int>(ExitCode::io)), "");
    EXPECT_EQ(read("empty.st"), "") << "as it was";
}

} // namespace
} // namespace host
