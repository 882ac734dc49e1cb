// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/interrupts.h"

#include <windows.h>

#include <mutex>
#include <optional>

namespace host {
namespace {

constexpr UINT kInterrupted = 130;

// The system runs the handler on a thread of its own.
std::mutex lock;
std::optional<DWORD> come;
core::script::Engine* running = nullptr;

BOOL WINAPI note(DWORD event) {
    const std::lock_guard guard(lock);
    if (come)
        ::ExitProcess(kInterrupted);
    come = event;
    if (running != nullptr)
        running->interrupt();
    return TRUE;
}

} // namespace

struct Interrupts::Before {};

Interrupts::Interrupts(core::script::Engine* engine) {
    const std::lock_guard guard(lock);
    come.reset();
    running = engine;
    ::SetConsoleCtrlHandler(&note, TRUE);
}

Interrupts::~Interrupts() {
    ::SetConsoleCtrlHandler(&note, FALSE);
    const std::lock_guard guard(lock);
    running = nullptr;
}

void Interrupts::check() const {
    const std::lock_guard guard(lock);
    if (come)
        throw Interrupted();
}

bool Interrupts::asksForEnd() const noexcept {
    const std::lock_guard guard(lock);
    return come && *come != CTRL_C_EVENT;
}

} // namespace host
