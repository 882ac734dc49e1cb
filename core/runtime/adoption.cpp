// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/adoption.h"

#include "core/runtime/immortal.h"
#include "core/runtime/thread_slots.h"

#include <memory>
#include <mutex>
#include <new>

namespace core {
namespace detail {
namespace {

struct Adoptions {
    std::mutex lock;
    AdoptedThread* first = nullptr;
};

/// Forgets the AdoptedThread of the calling thread.
void clear_own() noexcept {
    thread_slots.data.set(nullptr);
    thread_slots.process.set(nullptr);
}

/// Threads end after the library's other statics, too.
Adoptions& adoptions() noexcept {
    static Immortal<Adoptions> all;
    return *all;
}

} // namespace

AdoptedThread* AdoptedThread::own() {
    if (auto* const known = static_cast<AdoptedThread*>(thread_slots.process.get()); known != nullptr)
        return known;
    if (!thread_slots.process.allocated())
        return nullptr;
    auto made = std::make_unique<AdoptedThread>();
    if (!thread_slots.data.set(&made->data) || !thread_slots.process.set(made.get())) {
        thread_slots.data.set(nullptr);
        throw std::bad_alloc();
    }
    Adoptions& all = adoptions();
    const std::lock_guard guard(all.lock);
    made->next = all.first;
    if (all.first != nullptr)
        all.first->previous = made.get();
    return all.first = made.release();
}

void AdoptedThread::add(ProcessScope& scope) noexcept {
    scope.thread_ = this;
    scope.before_ = newest;
    newest = &scope;
    choose();
}

void AdoptedThread::remove(const ProcessScope& scope) noexcept {
    ProcessScope** place = &newest;
    while (*place != &scope)
        place = &(*place)->before_;
    *place = scope.before_;
    choose();
}

void AdoptedThread::forget(const SCOM_Process* process) noexcept {
    for (ProcessScope* scope = newest; scope != nullptr; scope = scope->before_) {
        if (scope->process_ == process)
            scope->process_ = nullptr;
    }
    choose();
}

void AdoptedThread::choose() noexcept {
    const ProcessScope* scope = newest;
    while (scope != nullptr && scope->process_ == nullptr)
        scope = scope->before_;
    SCOM_Process* const chosen = scope != nullptr ? scope->process_ : nullptr;
    process.store(chosen, std::memory_order_release);
    data.store(chosen != nullptr ? chosen->data() : nullptr, std::memory_order_release);
}

void AdoptedThread::end() noexcept {
    for (ProcessScope* scope = newest; scope != nullptr; scope = scope->before_)
        scope->thread_ = nullptr;
    if (next != nullptr)
        next->previous = previous;
    (previous != nullptr ? previous->next : adoptions().first) = next;
    delete this;
}

void end_adopted_thread(void* thread) noexcept {
    clear_own(); // the other slot leads into it, too
    Adoptions& all = adoptions();
    const std::lock_guard guard(all.lock);
    // The library may be detached while the thread ends, and has then ended it already.
    AdoptedThread* known = all.first;
    while (known != nullptr && known != thread)
        known = known->next;
    if (known != nullptr)
        known->end();
}

void end_all_adoptions() noexcept {
    Adoptions& all = adoptions();
    const std::lock_guard guard(all.lock);
    while (all.first != nullptr)
        all.first->end();
    clear_own();
}

} // namespace detail

using detail::AdoptedThread;

ProcessScope::ProcessScope(SCOM_Process* process) : process_(process) {
    AdoptedThread* const own = process != nullptr ? AdoptedThread::own() : nullptr;
    if (own == nullptr)
        return;
    const std::lock_guard guard(detail::adoptions().lock);
    own->add(*this);
}

ProcessScope::~ProcessScope() {
    const std::lock_guard guard(detail::adoptions().lock);
    if (thread_ == nullptr)
        return;
    thread_->remove(*this);
    // Only the thread itself can take its own from the slot; for another thread it stays until that one ends.
    if (thread_->newest == nullptr && detail::thread_slots.process.get() == thread_) {
        detail::clear_own();
        thread_->end();
    }
}

void release_threads(SCOM_Process* process) noexcept {
    detail::Adoptions& all = detail::adoptions();
    const std::lock_guard guard(all.lock);
    for (AdoptedThread* thread = all.first; thread != nullptr; thread = thread->next)
        thread->forget(process);
}

SCOM_Process* current_process() noexcept {
    const auto* const own = static_cast<const AdoptedThread*>(detail::thread_slots.process.get());
    return own != nullptr ? own->process.load(std::memory_order_acquire) : nullptr;
}

SCOM_ProcessData* current_process_data() noexcept {
    const auto* const data =
        static_cast<const std::atomic<SCOM_ProcessData*>*>(detail::thread_slots.data.get());
    return data != nullptr ? data->load(std::memory_order_acquire) : nullptr;
}

} // namespace core
