// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/mutex.h>

namespace core {

/// The mutex of an open container, which a thread may take again. A thread that waits is passed over for a
/// millisecond at most: the system's own mutex would let one that changes the container in a loop starve all
/// others.
class EngineMutex {
  public:
    void lock() { mutex_.lock(); }
    [[nodiscard]] bool try_lock() noexcept { return mutex_.tryLock(); }
    void unlock() { mutex_.unlock(); }

  private:
    detail::MutexEngine mutex_;
};

} // namespace core
