// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/threads/thread_state.h"

namespace core::detail {

/// Keeps the state of a thread until it is removed. Throws std::bad_alloc.
void add_running(const std::shared_ptr<ThreadState>& state);
/// Lets go of a state; none of the thread's work may be in its process any more.
void remove_running(const ThreadState& state) noexcept;

/// Asks a thread to stop and wakes it.
void stop_thread(ThreadState& state) noexcept;

} // namespace core::detail
