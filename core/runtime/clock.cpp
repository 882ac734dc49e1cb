// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_clock.h"

#include <core/runtime/clock.h>

#include <atomic>
#include <ctime>
#include <thread>

namespace core {
namespace {

class SystemClock final : public Clock {
  public:
    std::chrono::system_clock::time_point now() noexcept override {
        ::timespec time{}; // that of the standard library ends in 2038 on hosts of 32 bits
        ::clock_gettime(CLOCK_REALTIME, &time);
        const auto since1970 = std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
        return std::chrono::system_clock::time_point(
            std::chrono::duration_cast<std::chrono::system_clock::duration>(since1970));
    }
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
