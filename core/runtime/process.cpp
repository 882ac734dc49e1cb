// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/thread_slots.h"

#include <core/runtime/process.h>

namespace core {

constinit detail::ThreadSlots detail::thread_slots;

using detail::thread_slots;

SCOM_Process* current_process() noexcept {
    return static_cast<SCOM_Process*>(thread_slots.process.get());
}

SCOM_ProcessData* current_process_data() noexcept {
    return static_cast<SCOM_ProcessData*>(thread_slots.data.get());
}

SCOM_Process* adopt_thread(SCOM_Process* process) noexcept {
    SCOM_Process* const before = current_process();
    thread_slots.process.set(process);
    thread_slots.data.set(process != nullptr ? process->data() : nullptr);
    return before;
}

const Settings& current_settings() noexcept {
    static const Settings defaults;
    const SCOM_ProcessData* const data = current_process_data();
    return data != nullptr ? data->settings : defaults;
}

} // namespace core
