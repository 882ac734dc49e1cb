// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/unknown.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <shared_mutex>

/// Locks as interfaces. The objects belong to whatever encloses them, so their references count nothing; they
/// must not be destroyed while a thread holds them or waits for them.
namespace core {

/// Exclusive: one thread at a time.
class IMutex : public IUnknown {
  public:
    static constexpr GUID IID = "aea2bf58-7319-45a9-befa-51a625a43b03"_guid;
    /// Waits until the calling thread holds the lock.
    virtual void lock() = 0;
    /// False, at once, when another thread holds the lock.
    virtual bool tryLock() = 0;
    /// Unlocks it. The calling thread holds it and calls this once for each time that it locked it.
    virtual void unlock() = 0;

  protected:
    ~IMutex() = default;
};

/// Many readers or one writer. Not recursive: a thread that holds it in either way must not ask for it again.
class IRWMutex : public IUnknown {
  public:
    static constexpr GUID IID = "0b3a7bd9-4e91-447c-95aa-79ac0f060b5d"_guid;
    /// Waits until the calling thread may read: until no thread writes.
    virtual void lockRead() = 0;
    /// Ends the reading of the calling thread.
    virtual void unlockRead() = 0;
    /// Waits until the calling thread may write: until no other thread reads or writes.
    virtual void lockWrite() = 0;
    /// Ends the writing of the calling thread.
    virtual void unlockWrite() = 0;

  protected:
    ~IRWMutex() = default;
};

/// Threads wait until others signal.
class ISemaphore : public IUnknown {
  public:
    static constexpr GUID IID = "898a8253-bc72-4070-8c63-3e2df24696e9"_guid;
    /// Waits until there is a signal, at most `timeout`; false when none came. Zero does not wait; a century
    /// and more is for ever.
    virtual bool wait(std::chrono::milliseconds timeout) = 0;
    /// Gives one signal.
    virtual void signal() = 0;

  protected:
    ~ISemaphore() = default;
};

/// A lock that the thread which holds it may lock again.
class IMutexImpl final : public IUnknownImpl<IMutexImpl, IMutex> {
  public:
    void lock() override { mutex_.lock(); }
    bool tryLock() override { return mutex_.try_lock(); }
    void unlock() override { mutex_.unlock(); }

  private:
    std::recursive_mutex mutex_;
};

/// The lock of many readers or one writer.
class IRWMutexSimpleImpl final : public IUnknownImpl<IRWMutexSimpleImpl, IRWMutex> {
  public:
    void lockRead() override { mutex_.lock_shared(); }
    void unlockRead() override { mutex_.unlock_shared(); }
    void lockWrite() override { mutex_.lock(); }
    void unlockWrite() override { mutex_.unlock(); }

  private:
    std::shared_mutex mutex_;
};

namespace detail {

/// A semaphore whose signals are used up by waiting, or (`sticky`) stay once given.
template <class Impl, bool sticky>
class SemaphoreBase : public IUnknownImpl<Impl, ISemaphore> {
  public:
    bool wait(std::chrono::milliseconds timeout) override {
        // The sum of now and a timeout that means "for ever" would not fit the clock, nor would one below
        // zero.
        constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365 * 100);
        std::unique_lock guard(mutex_);
        if (!ready_.wait_for(guard, std::clamp(timeout, std::chrono::milliseconds::zero(), kLongest),
                             [this] { return signals_ > 0; }))
            return false;
        if (!sticky)
            --signals_;
        return true;
    }
    void signal() override {
        const std::lock_guard guard(mutex_);
        ++signals_;
        ready_.notify_all();
    }

  private:
    std::mutex mutex_;
    std::condition_variable ready_;
    std::uint64_t signals_ = 0;
};

} // namespace detail

/// A semaphore whose signals each let one waiting thread through.
class ISemaphoreImpl final : public detail::SemaphoreBase<ISemaphoreImpl, false> {};
/// A semaphore that lets every thread through once it was signalled.
class ISemaphoreOneTimeImpl final : public detail::SemaphoreBase<ISemaphoreOneTimeImpl, true> {};

} // namespace core
