// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/waitable.h>
#include <core/runtime/types.h>

#include <atomic>
#include <cstdint>
#include <memory>

/// Locks between the processes of one user. They are found by name, which lies in shared memory that no other
/// user may open. The name goes with the last object that uses it, or, where a process was killed, when a
/// lock under a new name is made.
namespace core {

namespace detail {
class NamedMemory;
} // namespace detail

/// How a wait for a NamedMutex ended.
enum class NamedLockResult {
    locked,    ///< the calling thread holds it
    abandoned, ///< the calling thread holds it, and its holder before ended without unlocking it
    timedOut,  ///< the time passed first
};

/// A mutex between processes: one thread of all processes at a time. When the holder dies, the next one gets
/// it and is told, once, since what the mutex guards may be half changed.
///
/// Any thread may call it. Not recursive. A stop ends a wait within 20 ms.
class CORE_API NamedMutex {
  public:
    /// Opens the mutex of that name; makes it if it does not exist. A name has 1 to 150 bytes in UTF-8, of
    /// which a blank, "/", "%", "~" and a control character count as three. Throws ThreadException for
    /// another name and when the system refuses.
    explicit NamedMutex(const wstring& name);
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;
    /// Closes it, having unlocked it if the calling thread holds it. No other thread holds it through this
    /// object.
    ~NamedMutex();

    /// Waits until the calling thread holds the mutex, never timedOut. Throws ThreadException in the thread
    /// that holds it already, and ThreadDeath.
    NamedLockResult lock() { return tryLockFor(kForever); }
    /// Locks it if that needs no waiting.
    [[nodiscard]] NamedLockResult tryLock() { return tryLockFor(std::chrono::milliseconds::zero()); }
    /// Waits until the calling thread holds the mutex, at most `timeout`. Throws as lock() does.
    [[nodiscard]] NamedLockResult tryLockFor(std::chrono::milliseconds timeout);
    /// Unlocks it. Throws ThreadException in a thread that does not hold it.
    void unlock();

  private:
    void release() noexcept; // in the thread that holds it

    std::unique_ptr<detail::NamedMemory> memory_;
    std::atomic<std::uintptr_t> holder_{0}; // the thread that has locked it through this object
};

/// A semaphore between processes. It has no holder: a signal that a killed process had used up is used up.
///
/// Any thread may call it. A stop ends a wait within 20 ms.
class CORE_API NamedSemaphore {
  public:
    /// Opens the semaphore of that name; makes it with `initial` signals if it does not exist. Throws as the
    /// constructor of NamedMutex does.
    explicit NamedSemaphore(const wstring& name, std::uint32_t initial = 0);
    NamedSemaphore(const NamedSemaphore&) = delete;
    NamedSemaphore& operator=(const NamedSemaphore&) = delete;
    /// Closes it.
    ~NamedSemaphore();

    /// Waits until there is a signal, at most `timeout`, and uses it up; false when none came. Throws
    /// ThreadDeath.
    [[nodiscard]] bool wait(std::chrono::milliseconds timeout = kForever);
    /// Gives one signal, which lets one waiting thread of any process through.
    void signal() noexcept;

  private:
    std::unique_ptr<detail::NamedMemory> memory_;
};

} // namespace core
