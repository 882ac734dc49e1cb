// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/rounds.h"

#include <functional>
#include <random>
#include <thread>
#include <vector>

/// Many threads that do the same at the same time.
namespace stress {

/// How often something is done in all.
inline int operations() {
    return support::rounds(100'000, 10'000'000);
}

/// Runs `work(random, index)` on as many threads and waits for their ends.
inline void run(int threads, const std::function<void(std::minstd_rand& random, int index)>& work) {
    std::vector<std::jthread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&work, i] {
            std::minstd_rand random(static_cast<unsigned>(i) + 1);
            work(random, i);
        });
}

} // namespace stress
