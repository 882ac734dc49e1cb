// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace core::detail {

/// One value a thread, null until set; exists between allocate() and free(). Reading a slot that does not
/// exist gives null, setting it does nothing.
class ThreadSlot {
  public:
    void allocate() noexcept {
        pthread_key_t key = 0;
        if (!allocated_ && pthread_key_create(&key, nullptr) == 0) {
            key_ = key;
            allocated_.store(true, std::memory_order_release);
        }
    }
    void free() noexcept {
        if (allocated_.exchange(false))
            pthread_key_delete(key_);
    }
    [[nodiscard]] void* get() const noexcept {
        return allocated_.load(std::memory_order_acquire) ? pthread_getspecific(key_) : nullptr;
    }
    void set(const void* value) noexcept {
        if (allocated_.load(std::memory_order_acquire))
            pthread_setspecific(key_, value);
    }

  private:
    std::atomic<bool> allocated_{false};
    pthread_key_t key_ = 0;
};

/// The library's slots, in the order of their allocation.
struct ThreadSlots {
    ThreadSlot locale;  // the thread's own resource locale, a Locale kept by the thread
    ThreadSlot process; // the process that has adopted the thread, borrowed
    ThreadSlot data;    // that process's data, borrowed, so that reading a setting costs one look-up
};

extern ThreadSlots thread_slots;

} // namespace core::detail
