// SPDX-License-Identifier: Apache-2.0
#include "tests/host/program_fixture.h"

#include <nlohmann/json.hpp>

namespace host {
namespace {

namespace fs = std::filesystem;

class ListFiles : public FolderTest {
  protected:
    static ExitCode format(const std::string& output, const std::string& list) {
        return corehost({"list", "fmt", "-o", output}, list).code;
    }
};

TEST_F(ListFiles, WhatALinkLeadsToIsReplacedAndDevicesAreWrittenTo) {
    const std::string out = file("out", "old");
    fs::create_symlink(out, path("link"));
    EXPECT_EQ(format(path("link"), "{5}"), ExitCode::done);
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(text_of(out), "{5}\n");
    fs::create_symlink("not there yet", path("dangling"));
    EXPECT_EQ(format(path("dangling"), "{6}"), ExitCode::done);
    EXPECT_TRUE(fs::is_symlink(path("dangling")));
    EXPECT_EQ(text_of(path("not there yet")), "{6}\n");
    fs::create_symlink("circle", path("circle"));
    EXPECT_EQ(format(path("circle"), "{7}"), ExitCode::io);
    EXPECT_TRUE(fs::is_symlink(path("circle")));
    EXPECT_EQ(format("/dev/null", "{5}"), ExitCode::done);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(format("/dev/full", "{5}"), ExitCode::io);
}

TEST_F(ListFiles, JsonNamesAFileWhoseNameIsNoText) {
    const Answer answer = corehost({"list", "check", file("\xFF", "{}"), "--json"});
    EXPECT_EQ(nlohmann::json::parse(answer.out)["file"], path("\uFFFD"));
}

} // namespace
} // namespace host
