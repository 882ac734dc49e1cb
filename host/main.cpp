// SPDX-License-Identifier: Apache-2.0
#include "host/commands/program.h"

#include <fcntl.h>
#include <malloc.h>

#include <csignal>
#include <iostream>

namespace {

/// Keeps the numbers of closed standard streams from being those of files that are opened later: what is
/// written to a closed stream still fails, but does not end up in a container.
void keep_standard_streams() {
    for (int stream = 0; stream <= 2; ++stream) {
        if (::fcntl(stream, F_GETFD) == -1)
            static_cast<void>(
                ::open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY)); // the lowest that is free
    }
}

/// A file that must not grow further is an error of the write, like a full disk, and ends nothing by itself.
void keep_running_at_limits() {
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

/// Scripts make large values and drop them all the time: pages given back at once would be asked for again,
/// which takes longer than filling them.
void keep_freed_memory() {
    constexpr int kKept = 256 << 20;
    constexpr int kMapped = 32 << 20; // the most that the system takes
    static_cast<void>(::mallopt(M_TRIM_THRESHOLD, kKept));
    static_cast<void>(::mallopt(M_MMAP_THRESHOLD, kMapped));
}

} // namespace

int main(int argc, char** argv) {
    using namespace host;
    keep_standard_streams();
    keep_running_at_limits();
    keep_freed_memory();
    std::ios::sync_with_stdio(false);
    Console console{std::cin, std::cout, std::cerr, language_of_environment(), colour_of_environment()};
    console.terminal = terminal_of_environment();
    return static_cast<int>(run_program({argv + 1, argv + argc}, console));
}
