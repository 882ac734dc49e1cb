// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/running_threads.h"

#include "core/runtime/immortal.h"
#include "core/runtime/threads/thread_record.h"

#include <condition_variable>
#include <vector>

namespace core {
namespace {

struct Running {
    struct Entry {
        std::shared_ptr<detail::ThreadState> state;
        const SCOM_Process* process; // as it was at the start
    };

    std::mutex lock;
    std::condition_variable removed;
    std::vector<Entry> entries;
};

Running& running() noexcept {
    static detail::Immortal<Running> all; // threads may end after the library's statics
    return *all;
}

} // namespace

void detail::add_running(const std::shared_ptr<ThreadState>& state) {
    Running& all = running();
    const std::lock_guard guard(all.lock);
    all.entries.push_back({state, state->process.get()});
}

void detail::remove_running(const ThreadState& state) noexcept {
    Running& all = running();
    const std::lock_guard guard(all.lock);
    std::erase_if(all.entries, [&](const Running::Entry& entry) { return entry.state.get() == &state; });
    all.removed.notify_all();
}

void detail::stop_thread(ThreadState& state) noexcept {
    state.stop.store(true);
    if (ThreadRecord* const record = state.record.load())
        record->wake();
}

void end_threads(SCOM_Process* process) noexcept {
    Running& all = running();
    std::unique_lock guard(all.lock);
    for (bool found = true; found;) { // a thread may have started another before it stopped
        found = false;
        for (const Running::Entry& entry : all.entries) {
            if (entry.process != process || entry.state.get() == detail::own_state())
                continue; // a thread cannot wait for its own end
            found = true;
            detail::stop_thread(*entry.state);
        }
        if (found)
            all.removed.wait(guard);
    }
}

} // namespace core
