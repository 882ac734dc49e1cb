// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/thread.h>

#include <cstdint>

namespace core::detail {

/// Lets a loop be stopped: each call is a turn, and now and then Thread::check().
class LoopCheck {
  public:
    void operator()() {
        constexpr std::uint32_t kTurns = 1024;
        if (++turns_ % kTurns == 0)
            Thread::check();
    }

  private:
    std::uint32_t turns_ = 0;
};

} // namespace core::detail
