// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>
#include <core/runtime/threads/waitable.h>
#include <core/runtime/unknown.h>

#include <atomic>

namespace core {

/// Exclusive: one thread at a time, which may lock it again. A thread that waits gets it after a millisecond
/// or a little more of being passed over, so that none waits for ever. `std::lock_guard<IMutex>` holds it.
///
/// Any thread may call it. It is not destroyed while a thread holds it or waits for it; a thread that has
/// unlocked it and another that then destroys it do not disturb each other.
class IMutex : public IUnknown {
  public:
    static constexpr GUID IID = "aea2bf58-7319-45a9-befa-51a625a43b03"_guid;
    /// Waits until the calling thread holds the lock. A stop does not end this wait. Throws std::bad_alloc
    /// when the thread waits for the first time and no memory is left.
    virtual void lock() = 0;
    /// Locks it if no other thread holds it; false, at once, when one does.
    virtual bool tryLock() = 0;
    /// Unlocks it. The calling thread holds it and calls this once for each time that it locked it; throws
    /// ThreadException in a thread that does not hold it.
    virtual void unlock() = 0;
    /// Waits until the calling thread holds the lock, at most `timeout`; false when the time passed. Throws
    /// ThreadDeath.
    virtual bool tryLockFor(std::chrono::milliseconds timeout) = 0;
    /// Returns what wait_any() and wait_all() wait at, borrowed: valid as long as the mutex.
    [[nodiscard]] virtual Waitable& waitable() noexcept = 0;

  protected:
    ~IMutex() = default;
};

/// The class id of the mutex that create_object() makes.
inline constexpr GUID kMutexClass = "ebfe3d0d-916b-411a-a478-1fd9439638fb"_guid;

namespace detail {

/// The mutex without its interface. The holder's number is the whole state: 0 when no thread holds it.
class CORE_API MutexEngine final : public Waitable {
  public:
    MutexEngine() noexcept = default;
    ~MutexEngine();

    void lock();
    [[nodiscard]] bool tryLock() noexcept;
    [[nodiscard]] bool tryLockFor(std::chrono::milliseconds timeout);
    void unlock();

  private:
    bool tryTake(std::uint32_t way) noexcept override;
    bool tryTakeQueued(std::uint32_t way) noexcept override;
    void giveBack(std::uint32_t way) noexcept override;
    void admit(WaitQueue& queue) noexcept override;
    [[nodiscard]] bool isHeld() const noexcept;
    [[nodiscard]] bool tryTakeFree(std::uintptr_t me) noexcept;
    void release() noexcept;

    std::atomic<std::uintptr_t> holder_{0};
    std::uint32_t again_ = 0; // how often the holder has locked it beyond the first time
};

/// The mutex under the interface `Base`.
template <class Base>
class MutexOf : public Base {
  public:
    using Interfaces = InterfaceList<IMutex>;

    void lock() override { engine_.lock(); }
    bool tryLock() override { return engine_.tryLock(); }
    void unlock() override { engine_.unlock(); }
    bool tryLockFor(std::chrono::milliseconds timeout) override { return engine_.tryLockFor(timeout); }
    Waitable& waitable() noexcept override { return engine_; }

  private:
    MutexEngine engine_;
};

} // namespace detail

/// The mutex as a member of an object that owns it: its references count nothing.
class IMutexImpl final : public detail::MutexOf<IUnknownImpl<IMutexImpl, IMutex>> {};

} // namespace core
