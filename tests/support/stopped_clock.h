// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/clock.h>

/// The library's clock, standing still, while the object lives.
class StoppedClock final : public core::Clock {
  public:
    explicit StoppedClock(std::chrono::system_clock::time_point time) : time_(time) {
        core::replace_clock(this);
    }
    ~StoppedClock() override { core::replace_clock(nullptr); }
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;
    std::chrono::system_clock::time_point now() noexcept override { return time_; }
    void sleep(std::chrono::milliseconds) override {}

  private:
    std::chrono::system_clock::time_point time_;
};
