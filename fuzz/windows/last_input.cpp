// SPDX-License-Identifier: Apache-2.0
#include "fuzz/last_input.h"

#include <windows.h>

#include <csignal>

namespace {

std::string leftover;

/// Only calls of the system, which need nothing of the program.
void keep_input(int signal) {
    const HANDLE file = ::CreateFileA(leftover.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    ::WriteFile(file, last_input.data(), static_cast<DWORD>(last_input.size()), &written, nullptr);
    ::CloseHandle(file);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

} // namespace

void keep_last_input(const std::string& file) {
    leftover = file;
    for (const int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGILL})
        std::signal(signal, keep_input);
}
