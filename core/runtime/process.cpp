// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/thread_slots.h"

#include <core/runtime/errors.h>
#include <core/runtime/process.h>

namespace core {

constinit detail::ThreadSlots detail::thread_slots;

SCOM_Process& require_process() {
    SCOM_Process* const process = current_process();
    if (process == nullptr)
        throw_error<ProcessException>(messages::kNoProcess);
    return *process;
}

void detail::no_service(const GUID& iid) {
    throw_error<ProcessException>(messages::kNoService, {to_string(iid)});
}

const Settings& current_settings() noexcept {
    static const Settings defaults;
    const SCOM_ProcessData* const data = current_process_data();
    return data != nullptr ? data->settings : defaults;
}

} // namespace core
