// SPDX-License-Identifier: Apache-2.0
// The compiler's runtime keeps thread-local variables in memory that one key of its threads frees, and runs
// their destructors from another key. Keys are served in the order in which they were made, so the key of the
// destructors has to come first: it is made here, before anything of the library has used a thread-local
// variable.
#include <cxxabi.h>
#include <windows.h>

namespace core {
namespace {

struct DestructorsComeFirst {
    DestructorsComeFirst() noexcept {
        // A function of the system's library without effect: ours may be gone by the time the thread ends.
        const auto nothing = reinterpret_cast<void(_GLIBCXX_CDTOR_CALLABI*)(void*)>(
            reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"msvcrt.dll"), "clock")));
        if (nothing != nullptr)
            static_cast<void>(abi::__cxa_thread_atexit(nothing, nullptr, nullptr));
    }
};

[[gnu::init_priority(101)]] const DestructorsComeFirst destructors_come_first;

} // namespace
} // namespace core
