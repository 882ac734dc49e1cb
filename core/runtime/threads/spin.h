// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <thread>

namespace core::detail {

/// Tries again and again for about as long as a sleep would take to begin: a short hold ends before that.
/// Returns whether `attempt` succeeded. Never tries where only one thread can run at a time.
template <class Attempt>
bool spin(Attempt attempt) noexcept {
    constexpr int kSpins = 100;
    static const bool alone = std::thread::hardware_concurrency() == 1;
    for (int i = alone ? kSpins : 0; i < kSpins; ++i) {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#endif
        if (attempt())
            return true;
    }
    return false;
}

} // namespace core::detail
