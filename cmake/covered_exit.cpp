// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <cstdlib>

extern "C" void __gcov_dump();

/// Stands before the system's function of this name in builds that count coverage. A program and a shared
/// library have counters of their own, so each holds a copy, which calls the next one.
extern "C" [[noreturn]] __attribute__((visibility("default"))) void _exit(int status) {
    __gcov_dump();
    using Exit = void(int);
    auto* const next = reinterpret_cast<Exit*>(::dlsym(RTLD_NEXT, "_exit"));
    next(status);
    std::abort(); // not reached
}
