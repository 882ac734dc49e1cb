// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/unknown_impl.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <shared_mutex>

/// Locks as interfaces. The objects belong to whatever encloses them, so their references count nothing.
namespace core {

class IMutex : public IUnknown {
  public:
    static constexpr GUID IID = "aea2bf58-7319-45a9-befa-51a625a43b03"_guid;
    virtual void lock() = 0;
    virtual bool tryLock() = 0;
    virtual void unlock() = 0;

  protected:
    ~IMutex() = default;
};

class IRWMutex : public IUnknown {
  public:
    static constexpr GUID IID = "0b3a7bd9-4e91-447c-95aa-79ac0f060b5d"_guid;
    virtual void lockRead() = 0;
    virtual void unlockRead() = 0;
    virtual void lockWrite() = 0;
    virtual void unlockWrite() = 0;

  protected:
    ~IRWMutex() = default;
};

class ISemaphore : public IUnknown {
  public:
    static constexpr GUID IID = "898a8253-bc72-4070-8c63-3e2df24696e9"_guid;
    /// Waits until a signal can be taken, at most `timeout`; false when none came.
    virtual bool wait(std::chrono::milliseconds timeout) = 0;
    virtual void signal() = 0;

  protected:
    ~ISemaphore() = default;
};

/// May be locked again by the thread that holds it.
class IMutexImpl final : public IUnknownImpl<IMutexImpl, IMutex> {
  public:
    void lock() override { mutex_.lock(); }
    bool tryLock() override { return mutex_.try_lock(); }
    void unlock() override { mutex_.unlock(); }

  private:
    std::recursive_mutex mutex_;
};

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
        std::unique_lock guard(mutex_);
        if (!ready_.wait_for(guard, timeout, [this] { return signals_ > 0; }))
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

class ISemaphoreImpl final : public detail::SemaphoreBase<ISemaphoreImpl, false> {};
/// Once signalled, it lets everybody through.
class ISemaphoreOneTimeImpl final : public detail::SemaphoreBase<ISemaphoreOneTimeImpl, true> {};

} // namespace core
