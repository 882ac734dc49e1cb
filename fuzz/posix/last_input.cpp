// SPDX-License-Identifier: Apache-2.0
#include "fuzz/last_input.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace {

std::string leftover;

/// Only calls that a signal handler may make.
void keep_input(int signal) {
    const int file = open(leftover.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0644);
    if (file >= 0 && write(file, last_input.data(), last_input.size()) >= 0)
        close(file);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

} // namespace

void keep_last_input(const std::string& file) {
    leftover = file;
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(signal, keep_input);
}
