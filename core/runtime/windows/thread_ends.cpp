// SPDX-License-Identifier: Apache-2.0
// The compiler's runtime keeps thread-local variables in memory that one key of its threads frees, and runs
// their destructors from another key. Keys are served in the order in which they were made, so the key of the
// destructors has to come first: it is made here, before anything of the library has used a thread-local
// variable.
#include <cxxabi.h>
#include <windows.h>

namespace core {
namespace {

/// `Destructor` is found from what enrols it: its convention of calls has a name in headers of the system
/// alone.
template <class Destructor>
void call_at_end(int (*enrol)(Destructor, void*, void*) noexcept, void* function) noexcept {
    if (function != nullptr)
        static_cast<void>(enrol(reinterpret_cast<Destructor>(function), nullptr, nullptr));
}

struct DestructorsComeFirst {
    DestructorsComeFirst() noexcept {
        // A function of the system's library without effect: ours may be gone by the time the thread ends.
        const auto nothing = ::GetProcAddress(::GetModuleHandleW(L"msvcrt.dll"), "clock");
        call_at_end(&abi::__cxa_thread_atexit, reinterpret_cast<void*>(nothing));
    }
};

[[gnu::init_priority(101)]] const DestructorsComeFirst destructors_come_first;

} // namespace
} // namespace core
