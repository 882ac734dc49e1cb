// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

#include <atomic>

namespace core::detail {

/// One value a thread, null until set; exists between allocate() and free(). Reading a slot that does not
/// exist gives null.
class ThreadSlot {
  public:
    /// Makes the slot. `ended` takes what a thread that ends has left in it. False when the system has no
    /// slot to give.
    [[nodiscard]] bool allocate(void (*ended)(void* value) = nullptr) noexcept {
        pthread_key_t key = 0;
        if (allocated_)
            return true;
        if (pthread_key_create(&key, ended) != 0)
            return false;
        key_ = key;
        allocated_.store(true, std::memory_order_release);
        return true;
    }
    /// Ends the slot; what threads have left in it stays theirs.
    void free() noexcept {
        if (allocated_.exchange(false))
            pthread_key_delete(key_);
    }
    [[nodiscard]] bool allocated() const noexcept { return allocated_.load(std::memory_order_acquire); }
    [[nodiscard]] void* get() const noexcept { return allocated() ? pthread_getspecific(key_) : nullptr; }
    /// Sets the value of the calling thread; false when there is no slot, or no memory for it.
    bool set(const void* value) noexcept { return allocated() && pthread_setspecific(key_, value) == 0; }

  private:
    std::atomic<bool> allocated_{false};
    pthread_key_t key_ = 0;
};

/// The library's slots, in the order of their allocation.
struct ThreadSlots {
    ThreadSlot locale;  // the thread's own resource locale, a Locale kept by the thread
    ThreadSlot process; // the processes that have adopted the thread, an AdoptedThread
    ThreadSlot data;    // where the data of the process that counts is found, a part of the AdoptedThread
};

extern ThreadSlots thread_slots;

} // namespace core::detail
