// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>

namespace test {

// What a thread holds, counted by the allocation functions of allocation_limit.h.
inline thread_local std::ptrdiff_t bytes_held = 0;
inline thread_local std::ptrdiff_t most_bytes_held = 0;

inline void count_bytes(std::ptrdiff_t bytes) noexcept {
    bytes_held += bytes;
    most_bytes_held = std::max(most_bytes_held, bytes_held);
}

/// How much memory this thread comes to hold while one of these lives.
class MemoryPeak {
  public:
    MemoryPeak() noexcept { most_bytes_held = bytes_held; }
    /// The most bytes so far, beyond those that were held at the beginning.
    [[nodiscard]] std::size_t bytes() const noexcept {
        return static_cast<std::size_t>(most_bytes_held - begin_);
    }

  private:
    std::ptrdiff_t begin_ = bytes_held;
};

} // namespace test
