// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/interrupts.h"

#include <windows.h>

#include <atomic>
#include <mutex>
#include <optional>

namespace host {
namespace {

constexpr UINT kInterrupted = 130;

// The system runs the handler on a thread of its own.
std::mutex lock;
std::optional<DWORD> come;
std::atomic<bool> asked{false};
core::script::Engine* running = nullptr;

BOOL WINAPI note(DWORD event) {
    const std::lock_guard guard(lock);
    if (come)
        ::ExitProcess(kInterrupted);
    come = event;
    asked = true;
    if (running != nullptr)
        running->interrupt();
    return TRUE;
}

} // namespace

struct Interrupts::Before {};

Interrupts::Interrupts(core::script::Engine* engine) {
    const std::lock_guard guard(lock);
    come.reset();
    asked = false;
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

core::StopToken Interrupts::token() const {
    return core::StopToken({std::shared_ptr<void>(), &asked});
}

bool Interrupts::asksForEnd() const noexcept {
    const std::lock_guard guard(lock);
    return come && *come != CTRL_C_EVENT;
}

} // namespace host
