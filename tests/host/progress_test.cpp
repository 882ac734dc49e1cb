// SPDX-License-Identifier: Apache-2.0
// The bar of long work, as a terminal gets it.
#include "host/terminal/progress.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>

namespace host {
namespace {

/// What a terminal of 40 columns gets from `work`, which runs in a process of its own.
template <class Work>
std::string shown_by(Work work) {
    struct winsize size {
        24, 40, 0, 0
    };
    std::fflush(nullptr); // what waits here would be shown there, too
    int terminal = -1;
    const ::pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        Console console{std::cin, std::cout, std::cerr};
        work(console);
        ::_exit(0);
    }
    std::string shown;
    std::array<char, 4096> bytes{};
    for (::ssize_t count = 0; (count = ::read(terminal, bytes.data(), bytes.size())) > 0;)
        shown.append(bytes.data(), static_cast<std::size_t>(count));
    ::close(terminal);
    ::waitpid(child, nullptr, 0);
    return shown;
}

void wait_until_shown() {
    std::this_thread::sleep_for(std::chrono::milliseconds(520));
}

TEST(ProgressTest, ShowsThePartThatIsDoneAndLeavesNothing) {
    EXPECT_EQ(shown_by([](Console& console) {
                  Progress progress(console, "put", 200);
                  wait_until_shown();
                  progress.add(100);
                  wait_until_shown();
                  progress.add(500); // the files have grown
              }),
              "\rput [##########..........] 50 %\033[K"
              "\rput [####################] 100 %\033[K"
              "\r\033[K");
    EXPECT_EQ(shown_by([](Console& console) {
                  Progress progress(console, "get", 0);
                  wait_until_shown();
                  progress.add(3 << 20);
              }),
              "\rget 3 MiB\033[K\r\033[K");
}

TEST(ProgressTest, ShowsNothingOfWhatIsQuickOrGoesElsewhere) {
    EXPECT_EQ(shown_by([](Console& console) { Progress(console, "put", 1).add(1); }), "");
    EXPECT_EQ(shown_by([](Console&) {
                  std::ostringstream file;
                  Console elsewhere{std::cin, std::cout, file};
                  Progress progress(elsewhere, "put", 1);
                  wait_until_shown();
                  progress.add(1);
                  std::cerr << file.str();
              }),
              "");
}

} // namespace
} // namespace host
