// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>
#include <core/runtime/threads/waitable.h>
#include <core/runtime/unknown.h>

#include <atomic>

namespace core {

/// Many readers or one writer, in the order in which they came: a writer waits only for those that were there
/// before it, and so does a reader. Neighbouring readers go in together.
///
/// Not recursive: a thread that holds it in either way must not ask for it again, since a writer may have
/// come in between for whom it would have to wait. Any thread may call it. It is not destroyed while a thread
/// holds it or waits for it.
class IRWMutex : public IUnknown {
  public:
    static constexpr GUID IID = "0b3a7bd9-4e91-447c-95aa-79ac0f060b5d"_guid;
    /// Waits until the calling thread may read. A stop does not end this wait. Throws std::bad_alloc when the
    /// thread waits for the first time and no memory is left.
    virtual void lockRead() = 0;
    /// Ends the reading of the calling thread. Throws ThreadException when no thread reads.
    virtual void unlockRead() = 0;
    /// Waits until the calling thread may write. A stop does not end this wait. Throws std::bad_alloc when
    /// the thread waits for the first time and no memory is left.
    virtual void lockWrite() = 0;
    /// Ends the writing of the calling thread. Throws ThreadException when no thread writes.
    virtual void unlockWrite() = 0;
    /// Begins to read if no thread writes or waits; false, at once, when one does.
    virtual bool tryLockRead() = 0;
    /// Begins to write if no thread reads, writes or waits; false, at once, when one does.
    virtual bool tryLockWrite() = 0;
    /// Waits until the calling thread may read, at most `timeout`; false when the time passed. Throws
    /// ThreadDeath.
    virtual bool tryLockReadFor(std::chrono::milliseconds timeout) = 0;
    /// Waits until the calling thread may write, at most `timeout`; false when the time passed. Throws
    /// ThreadDeath.
    virtual bool tryLockWriteFor(std::chrono::milliseconds timeout) = 0;
    /// Returns what reading() and writing() wait at, borrowed: valid as long as the mutex.
    [[nodiscard]] virtual Waitable& inner() noexcept = 0;

  protected:
    ~IRWMutex() = default;
};

/// The class id of the read-write mutex that create_object() makes.
inline constexpr GUID kRWMutexClass = "645b4fb4-7625-4cba-bd9f-eeaac7a1fd1f"_guid;

namespace detail {

/// The two ways to take a read-write mutex.
inline constexpr std::uint32_t kReading = 0;
inline constexpr std::uint32_t kWriting = 1;

/// The read-write mutex without its interface.
class CORE_API RWMutexEngine final : public Waitable {
  public:
    RWMutexEngine() noexcept = default;
    ~RWMutexEngine();

    void lock(std::uint32_t way);
    [[nodiscard]] bool tryLock(std::uint32_t way) noexcept;
    [[nodiscard]] bool tryLockFor(std::uint32_t way, std::chrono::milliseconds timeout);
    void unlock(std::uint32_t way);

  private:
    bool tryTake(std::uint32_t way) noexcept override;
    void giveBack(std::uint32_t way) noexcept override;
    void admit(WaitQueue& queue) noexcept override;

    std::atomic<std::uint32_t> state_{0}; // the readers, a bit for the writer and one while threads wait
};

/// The read-write mutex under the interface `Base`.
template <class Base>
class RWMutexOf : public Base {
  public:
    using Interfaces = InterfaceList<IRWMutex>;

    void lockRead() override { engine_.lock(kReading); }
    void unlockRead() override { engine_.unlock(kReading); }
    void lockWrite() override { engine_.lock(kWriting); }
    void unlockWrite() override { engine_.unlock(kWriting); }
    bool tryLockRead() override { return engine_.tryLock(kReading); }
    bool tryLockWrite() override { return engine_.tryLock(kWriting); }
    bool tryLockReadFor(std::chrono::milliseconds timeout) override {
        return engine_.tryLockFor(kReading, timeout);
    }
    bool tryLockWriteFor(std::chrono::milliseconds timeout) override {
        return engine_.tryLockFor(kWriting, timeout);
    }
    Waitable& inner() noexcept override { return engine_; }

  private:
    RWMutexEngine engine_;
};

} // namespace detail

/// The lock of many readers or one writer, as a member of an object that owns it: its references count
/// nothing.
class IRWMutexSimpleImpl final : public detail::RWMutexOf<IUnknownImpl<IRWMutexSimpleImpl, IRWMutex>> {};

/// Returns what wait_any() and wait_all() take to read under `mutex`, which must outlive the wait.
[[nodiscard]] inline Awaited reading(IRWMutex& mutex) noexcept {
    return {mutex.inner(), detail::kReading};
}
/// Returns what wait_any() and wait_all() take to write under `mutex`, which must outlive the wait.
[[nodiscard]] inline Awaited writing(IRWMutex& mutex) noexcept {
    return {mutex.inner(), detail::kWriting};
}

/// Reads under a mutex as long as it lives.
class ReadLock {
  public:
    /// Waits until the thread may read under `mutex`, which must outlive the lock.
    explicit ReadLock(IRWMutex& mutex) : mutex_(mutex) { mutex_.lockRead(); }
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;
    ~ReadLock() { mutex_.unlockRead(); }

  private:
    IRWMutex& mutex_;
};

/// Writes under a mutex as long as it lives.
class WriteLock {
  public:
    /// Waits until the thread may write under `mutex`, which must outlive the lock.
    explicit WriteLock(IRWMutex& mutex) : mutex_(mutex) { mutex_.lockWrite(); }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;
    ~WriteLock() { mutex_.unlockWrite(); }

  private:
    IRWMutex& mutex_;
};

} // namespace core
