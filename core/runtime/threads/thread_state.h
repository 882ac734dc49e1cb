// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/semaphore.h>
#include <core/runtime/threads/thread.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace core::detail {

class ThreadRecord;

/// What a Thread and the thread that it started share.
struct ThreadState {
    wstring name;
    InterfacePtr<IRunnable> work;       // released when it has run
    InterfacePtr<SCOM_Process> process; // of the starter, may be null; released at the end
    std::optional<Locale> locale;       // of the starter, if it has set one
    std::atomic<bool> stop{false};
    std::atomic<ThreadRecord*> record{nullptr}; // while the thread runs
    SemaphoreEngine ended{true};
    std::mutex lock; // of what follows
    std::thread system;
};

} // namespace core::detail
