// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/memory/thread_part.h"

#include <core/runtime/live_counter.h>

#include <atomic>
#include <cstdint>

namespace core::detail {

/// What the library keeps of a counter. Only `counter` leads into the memory of the module, and
/// that is touched only while the module is there.
struct CounterRecord {
    char* name = nullptr;                 // null while the record is free
    const ModuleAnchor* module = nullptr; // compared, never read
    LiveCounter* counter = nullptr;
    std::int32_t outside = 0; // what no thread's part holds; changed atomically

    /// Gives the record to a counter, or to none. Reports read the count meanwhile.
    void assign(char* newName, const ModuleAnchor* newModule, LiveCounter* newCounter) noexcept {
        name = newName;
        module = newModule;
        counter = newCounter;
        std::atomic_ref(outside).store(0, std::memory_order_relaxed);
    }
};

/// The record of an index. The first one is of the classes for whose own record there was no memory.
[[nodiscard]] CounterRecord& counter_record(std::int32_t index) noexcept;

} // namespace core::detail
