// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/posix/named_memory.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/threads/named_lock.h>

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

} // namespace

NamedSemaphore::NamedSemaphore(const wstring& name, std::uint32_t initial)
    : memory_(std::make_unique<detail::NamedMemory>(name, kSemaphoreKind, initial)) {}

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
        if (!detail::sleep_at(signals, 0, deadline))
            return false;
    }
}

void NamedSemaphore::signal() noexcept {
    auto& signals = memory_->as<SharedSemaphore>().signals;
    signals.fetch_add(1);
    detail::wake_one_at(signals);
}

} // namespace core
