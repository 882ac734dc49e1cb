// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/process.h>

#include <atomic>

namespace core::detail {

/// Which processes have adopted one thread. It is made with the thread's first scope and goes with its last
/// one, or when the thread ends.
///
/// The scopes of all threads change under one lock, so that a process can end on any thread. What the thread
/// itself reads all the time is kept beside them and read without it.
struct AdoptedThread {
    std::atomic<SCOM_Process*> process{nullptr};  // of the newest scope whose process has not ended
    std::atomic<SCOM_ProcessData*> data{nullptr}; // that process's data
    ProcessScope* newest = nullptr;
    AdoptedThread* next = nullptr; // in the list of all
    AdoptedThread* previous = nullptr;

    /// Finds the calling thread's own, making it if need be. Null while the library is not attached. Throws
    /// std::bad_alloc.
    [[nodiscard]] static AdoptedThread* own();

    // With the lock of all adoptions held:

    void add(ProcessScope& scope) noexcept;
    void remove(const ProcessScope& scope) noexcept;
    void forget(const SCOM_Process* process) noexcept;
    void choose() noexcept;
    /// Leaves its scopes without a thread and ends.
    void end() noexcept;
};

/// The destructor of the thread slot: takes the AdoptedThread of a thread that ends.
void end_adopted_thread(void* thread) noexcept;
/// Ends the adoptions of all threads: the slots are about to go.
void end_all_adoptions() noexcept;

} // namespace core::detail
