// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_clock.h"
#include "core/runtime/system_reason.h"
#include "core/runtime/thread_locale.h"
#include "core/runtime/threads/running_threads.h"
#include "core/runtime/threads/thread_name.h"
#include "core/runtime/threads/thread_state.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/clock.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/uncaught.h>

#include <cxxabi.h>

#include <exception>
#include <system_error>
#include <utility>

namespace core {
namespace {

using detail::ThreadState;

/// The part of a thread's life in which it does its work.
class WorkingThread {
  public:
    explicit WorkingThread(ThreadState& state) noexcept : state_(state) {}
    WorkingThread(const WorkingThread&) = delete;
    WorkingThread& operator=(const WorkingThread&) = delete;
    ~WorkingThread() {
        state_.work.reset();
        state_.process.reset();
        if (detail::ThreadRecord* const record = state_.record.exchange(nullptr))
            record->state = nullptr;
        state_.ended.signal();
        remove_running(state_); // last: a process that waits for its threads then finds them finished
    }

    void run(const StopToken& stop) {
        detail::ThreadRecord& record = detail::own_record();
        record.state = &state_;
        state_.record.store(&record);
        detail::name_system_thread(state_.name);
        const ProcessScope scope(state_.process.get());
        if (state_.locale)
            detail::set_resource_locale(*state_.locale);
        try {
            state_.work->run(stop);
        } catch (const ThreadDeath&) {
        } catch (const abi::__forced_unwind&) { // the system ends the thread, and must be let through
            throw;
        } catch (...) {
            report_uncaught(std::current_exception(), state_.name);
        }
        state_.work.reset(); // in the process that it was made for
    }

  private:
    ThreadState& state_;
};

void run_thread(const std::shared_ptr<ThreadState>& state) {
    WorkingThread thread(*state);
    try {
        thread.run(StopToken(std::shared_ptr<const std::atomic<bool>>(state, &state->stop)));
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) { // the thread could not be set up
        report_uncaught(std::current_exception(), state->name);
    }
}

} // namespace

Thread::Thread() noexcept = default;

Thread::Thread(const wstring& name, IRunnable* work) : state_(std::make_shared<ThreadState>()) {
    state_->name = name;
    state_->work = InterfacePtr<IRunnable>(work);
    state_->process = InterfacePtr<SCOM_Process>(current_process());
    if (const Locale* const own = detail::own_resource_locale())
        state_->locale = *own;
    add_running(state_);
    try {
        const std::lock_guard guard(state_->lock);
        state_->system = std::thread(run_thread, state_);
    } catch (const std::system_error& e) {
        remove_running(*state_);
        throw_error<ThreadException>(messages::kThreadStart, {name, system_reason(e.code().value())});
    } catch (...) {
        remove_running(*state_);
        throw;
    }
}

Thread::Thread(Thread&& other) noexcept = default;

Thread& Thread::operator=(Thread&& other) noexcept {
    Thread(std::move(other)).state_.swap(state_);
    return *this;
}

Thread::~Thread() {
    if (state_ == nullptr)
        return;
    stop();
    const std::lock_guard guard(state_->lock);
    if (!state_->system.joinable())
        return;
    if (detail::own_state() == state_.get())
        state_->system.detach(); // it cannot wait for itself
    else
        state_->system.join();
}

void Thread::stop() noexcept {
    if (state_ != nullptr)
        detail::stop_thread(*state_);
}

bool Thread::join(std::chrono::milliseconds timeout) {
    if (state_ == nullptr)
        return true;
    if (detail::own_state() == state_.get())
        throw_error<ThreadException>(messages::kThreadJoinsItself, {state_->name});
    if (!state_->ended.wait(timeout))
        return false;
    const std::lock_guard guard(state_->lock);
    if (state_->system.joinable())
        state_->system.join(); // the rest is short: the destructors of its thread-local objects
    return true;
}

bool Thread::finished() const noexcept {
    return state_ == nullptr || state_->ended.signalled();
}

const wstring& Thread::name() const noexcept {
    static const wstring none;
    return state_ != nullptr ? state_->name : none;
}

Waitable& Thread::waitable() noexcept {
    return state_->ended;
}

void Thread::check() {
    detail::check_stop();
}

wstring Thread::currentName() {
    const ThreadState* const own = detail::own_state();
    return own != nullptr ? own->name : wstring();
}

Locale Thread::getResourceLocale() {
    return detail::resource_locale();
}

void Thread::setResourceLocale(const Locale& locale) {
    detail::set_resource_locale(locale);
}

void Thread::sleep(std::chrono::milliseconds time) {
    detail::check_stop();
    // A thread that nobody can stop needs no other sleep than the clock's.
    if (detail::own_state() != nullptr && detail::is_system_clock()) {
        if (time > std::chrono::milliseconds::zero())
            detail::wait_at({}, detail::deadline_after(time), detail::Stops::end);
    } else {
        current_clock().sleep(time);
        detail::check_stop();
    }
}

} // namespace core
