// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/named_memory.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/named_lock.h>

#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace core {
namespace {

using namespace std::chrono;

/// The system's own mutex between processes, whose next holder learns that the one before has died.
struct SharedMutex {
    detail::NamedHeader header;
    pthread_mutex_t mutex;
};

void init_mutex(void* memory, std::uint32_t) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    const int error = pthread_mutex_init(&static_cast<SharedMutex*>(memory)->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    if (error != 0)
        detail::fail_named({}, error);
}

constexpr detail::NamedKind kMutexKind{1, sizeof(SharedMutex), &init_mutex};

timespec system_time(system_clock::time_point time) {
    const auto whole = duration_cast<seconds>(time.time_since_epoch());
    timespec result{};
    result.tv_sec = static_cast<std::time_t>(whole.count());
    result.tv_nsec = static_cast<long>(duration_cast<nanoseconds>(time.time_since_epoch() - whole).count());
    return result;
}

/// Tries until the deadline; returns what the system says.
int wait_for(pthread_mutex_t& mutex, const detail::Deadline& deadline) {
    for (;;) {
        auto slice = duration_cast<nanoseconds>(detail::kNamedSlice);
        if (deadline)
            slice = std::min(slice, duration_cast<nanoseconds>(*deadline - steady_clock::now()));
        if (slice <= nanoseconds::zero())
            return ETIMEDOUT;
        const timespec until =
            system_time(system_clock::now() + duration_cast<system_clock::duration>(slice));
        const int error = pthread_mutex_timedlock(&mutex, &until);
        if (error != ETIMEDOUT)
            return error;
        detail::check_stop();
    }
}

} // namespace

NamedMutex::NamedMutex(const wstring& name)
    : memory_(std::make_unique<detail::NamedMemory>(name, kMutexKind, 0)) {}

NamedMutex::~NamedMutex() {
    if (holder_.load() == detail::thread_number())
        unlock();
}

NamedLockResult NamedMutex::tryLockFor(milliseconds timeout) {
    detail::check_stop();
    auto& shared = memory_->as<SharedMutex>();
    int error = pthread_mutex_trylock(&shared.mutex);
    if (error == EBUSY && timeout > milliseconds::zero())
        error = wait_for(shared.mutex, detail::deadline_after(timeout));
    if (error == EBUSY || error == ETIMEDOUT)
        return NamedLockResult::timedOut;
    if (error == EDEADLK)
        throw_error<ThreadException>(messages::kLockHeld, {memory_->name()});
    if (error == EOWNERDEAD)
        pthread_mutex_consistent(&shared.mutex);
    else if (error != 0)
        detail::fail_named(memory_->name(), error);
    holder_.store(detail::thread_number());
    // One who died inside of lock() or unlock() has left nothing half done.
    return shared.header.held.exchange(1) != 0 ? NamedLockResult::abandoned : NamedLockResult::locked;
}

void NamedMutex::unlock() {
    if (holder_.load() != detail::thread_number())
        throw_error<ThreadException>(messages::kLockNotHeld);
    auto& shared = memory_->as<SharedMutex>();
    holder_.store(0);
    shared.header.held.store(0);
    pthread_mutex_unlock(&shared.mutex);
}

} // namespace core
