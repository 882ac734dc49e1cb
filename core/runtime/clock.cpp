// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_clock.h"

#include <core/runtime/clock.h>

#include <atomic>
#include <thread>

namespace core {
namespace {

class SystemClock final : public Clock {
  public:
    std::chrono::system_clock::time_point now() noexcept override { return std::chrono::system_clock::now(); }
    void sleep(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
};

std::atomic<Clock*> replacedClock{nullptr};

} // namespace

Clock::~Clock() = default;

Clock& current_clock() noexcept {
    static SystemClock system;
    Clock* const clock = replacedClock.load(std::memory_order_acquire);
    return clock != nullptr ? *clock : system;
}

bool detail::is_system_clock() noexcept {
    return replacedClock.load(std::memory_order_acquire) == nullptr;
}

Clock* replace_clock(Clock* clock) noexcept {
    return replacedClock.exchange(clock, std::memory_order_acq_rel);
}

} // namespace core
