// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/posix/named_memory.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/named_lock.h>

#include <pthread.h>

#include <cerrno>

namespace core {
namespace {

using std::chrono::milliseconds;

/// The system's own mutex between processes, whose next holder learns that the one before has died.
struct SharedMutex {
    detail::NamedHeader header;
    pthread_mutex_t mutex;
    std::atomic<std::uint32_t> unlocked; // how often; who waits sleeps at it
    std::atomic<std::uint32_t> waiting;  // how many, and those who were killed while they did
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

/// Tries until the deadline; returns what the system says. The system's own wait with a time-out was
/// rejected: the thread sanitizer does not know that it can give a mutex whose holder has died.
int wait_for(SharedMutex& shared, const detail::Deadline& deadline) {
    for (;;) {
        const std::uint32_t unlocked = shared.unlocked.load();
        const int error = pthread_mutex_trylock(&shared.mutex);
        if (error != EBUSY)
            return error;
        shared.waiting.fetch_add(1);
        const bool slept = detail::sleep_at(shared.unlocked, unlocked, deadline);
        shared.waiting.fetch_sub(1);
        if (!slept)
            return EBUSY;
        detail::check_stop();
    }
}

} // namespace

NamedMutex::NamedMutex(const wstring& name)
    : memory_(std::make_unique<detail::NamedMemory>(name, kMutexKind, 0)) {}

NamedMutex::~NamedMutex() {
    if (holder_.load() == detail::thread_number())
        release();
}

NamedLockResult NamedMutex::tryLockFor(milliseconds timeout) {
    detail::check_stop();
    auto& shared = memory_->as<SharedMutex>();
    int error = pthread_mutex_trylock(&shared.mutex);
    if (error == EBUSY && timeout > milliseconds::zero())
        error = wait_for(shared, detail::deadline_after(timeout));
    if (error == EBUSY)
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
    release();
}

void NamedMutex::release() noexcept {
    auto& shared = memory_->as<SharedMutex>();
    holder_.store(0);
    shared.header.held.store(0);
    pthread_mutex_unlock(&shared.mutex);
    shared.unlocked.fetch_add(1);
    if (shared.waiting.load() != 0)
        detail::wake_one_at(shared.unlocked);
}

} // namespace core
