// SPDX-License-Identifier: Apache-2.0
#include "tests/host/settings_fixture.h"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <sstream>
#include <string>
#include <thread>

namespace host {
namespace {

TEST_F(SettingsCommand, WatchesOthersUntilItIsInterrupted) {
    const std::string told = file("told", "");
    const ::pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open(told.c_str(), O_WRONLY), STDOUT_FILENO);
        ::execl(CORE_TEST_PROGRAM, "corehost", "--lang", "en", "settings", "watch", "a", nullptr);
        ::_exit(127);
    }
    using namespace std::chrono_literals;
    for (int i = 0; i < 2000 && text_of(told).empty(); ++i) { // it tells what is set once it has begun
        EXPECT_EQ(settings({"set", "other", std::to_string(i)}), ExitCode::done);
        EXPECT_EQ(settings({"set", "a/b", std::to_string(i)}), ExitCode::done);
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(settings({"rm", "a"}), ExitCode::done);
    for (int i = 0; i < 2000 && text_of(told).find("a was removed\n") == std::string::npos; ++i)
        std::this_thread::sleep_for(10ms);
    ::kill(child, SIGINT);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 130);
    EXPECT_TRUE(text_of(told).starts_with("a/b = ")) << text_of(told);
    EXPECT_NE(text_of(told).find("a was removed\n"), std::string::npos) << text_of(told);
    EXPECT_EQ(text_of(told).find("other"), std::string::npos);
}

TEST_F(SettingsCommand, WatchesInJson) {
    const std::string told = file("told", "");
    const ::pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open(told.c_str(), O_WRONLY), STDOUT_FILENO);
        ::execl(CORE_TEST_PROGRAM, "corehost", "--json", "settings", "watch", nullptr);
        ::_exit(127);
    }
    using namespace std::chrono_literals;
    for (int i = 0; i < 2000 && text_of(told).empty(); ++i) {
        EXPECT_EQ(settings({"set", "a/b", std::to_string(i)}), ExitCode::done);
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(settings({"rm", "a/b"}), ExitCode::done);
    const std::string removed = "{\"path\":\"a/b\"}\n";
    for (int i = 0; i < 2000 && text_of(told).find(removed) == std::string::npos; ++i)
        std::this_thread::sleep_for(10ms);
    ::kill(child, SIGINT);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 130);
    std::istringstream lines(text_of(told));
    std::string first;
    std::getline(lines, first);
    const auto change = nlohmann::json::parse(first);
    EXPECT_EQ(change["path"], "a/b");
    EXPECT_EQ(change["layer"], "user");
    EXPECT_TRUE(text_of(told).ends_with(removed)) << text_of(told);
}

} // namespace
} // namespace host
