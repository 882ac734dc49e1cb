// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/named_memory.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/threads/named_lock.h>

#include <algorithm>
#include <thread>

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>
#endif

namespace core {
namespace {

using namespace std::chrono;

struct SharedSemaphore {
    detail::NamedHeader header;
    std::atomic<std::uint32_t> signals;
};
static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "processes share no locks of the library");

void init_semaphore(void* memory, std::uint32_t signals) {
    static_cast<SharedSemaphore*>(memory)->signals.store(signals);
}

constexpr detail::NamedKind kSemaphoreKind{2, sizeof(SharedSemaphore), &init_semaphore};

/// Sleeps until there may be signals, at most `time`. Where the system cannot wait at shared memory, that is
/// a moment.
void sleep_without_signals(std::atomic<std::uint32_t>& signals, nanoseconds time) noexcept {
#if defined(__linux__)
    const timespec most{0, static_cast<long>(time.count())};
    syscall(SYS_futex, &signals, FUTEX_WAIT, 0, &most, nullptr, 0);
#else
    static_cast<void>(signals);
    std::this_thread::sleep_for(std::min<nanoseconds>(time, milliseconds(1)));
#endif
}

void wake_one(std::atomic<std::uint32_t>& signals) noexcept {
#if defined(__linux__)
    syscall(SYS_futex, &signals, FUTEX_WAKE, 1, nullptr, nullptr, 0);
#else
    static_cast<void>(signals);
#endif
}

} // namespace

NamedSemaphore::NamedSemaphore(const wstring& name, std::uint32_t signals)
    : memory_(std::make_unique<detail::NamedMemory>(name, kSemaphoreKind, signals)) {}

NamedSemaphore::~NamedSemaphore() = default;

bool NamedSemaphore::wait(milliseconds timeout) {
    auto& signals = memory_->as<SharedSemaphore>().signals;
    const detail::Deadline deadline = detail::deadline_after(timeout);
    for (;;) {
        detail::check_stop();
        std::uint32_t present = signals.load();
        while (present != 0) {
            if (signals.compare_exchange_weak(present, present - 1))
                return true;
        }
        // Short sleeps also make up for a waiter that was woken and killed before it took the signal.
        auto slice = duration_cast<nanoseconds>(detail::kNamedSlice);
        if (deadline)
            slice = std::min(slice, duration_cast<nanoseconds>(*deadline - steady_clock::now()));
        if (slice <= nanoseconds::zero())
            return false;
        sleep_without_signals(signals, slice);
    }
}

void NamedSemaphore::signal() noexcept {
    auto& signals = memory_->as<SharedSemaphore>().signals;
    signals.fetch_add(1);
    wake_one(signals);
}

} // namespace core
