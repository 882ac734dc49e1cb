// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

namespace core {

/// Takes the report of a circle of locks, in the language of the calling thread's user. It is called on the
/// thread that closed the circle, before it waits.
using LockCycleHandler = void (*)(const wstring& report);

/// Whether this build of the library looks for circles of locks: debug builds do (the option
/// CORE_LOCK_CYCLES).
///
/// Threads that take two locks in opposite orders can wait for each other for ever, mostly on a customer's
/// machine. Such a build notes which lock was taken under which, and reports the first time that an order
/// closes a circle, whether or not anybody waits: which threads took what, and where. Waits with a time-out
/// and semaphores are not counted.
[[nodiscard]] CORE_API bool finds_lock_cycles() noexcept;

/// Makes `handler` the one that reports are given to; null restores the system's, which writes them to the
/// standard error stream. Returns the one before, null for the system's. Threads: any.
CORE_API LockCycleHandler replace_lock_cycle_handler(LockCycleHandler handler) noexcept;

} // namespace core
