// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>
#include <core/runtime/threads/waitable.h>
#include <core/runtime/unknown.h>

#include <atomic>

namespace core {

/// Threads wait until others signal, and go on in the order in which they came.
///
/// Any thread may call it. It is not destroyed while a thread waits at it; a thread that has been let through
/// may destroy it.
class ISemaphore : public IUnknown {
  public:
    static constexpr GUID IID = "898a8253-bc72-4070-8c63-3e2df24696e9"_guid;
    /// Waits until there is a signal, at most `timeout`; false when none came. Zero does not wait; a century
    /// and more is for ever. Throws ThreadDeath.
    virtual bool wait(std::chrono::milliseconds timeout) = 0;
    /// Gives one signal, which lets one waiting thread through, or the next one that comes.
    virtual void signal() = 0;
    /// Returns what wait_any() and wait_all() wait at, borrowed: valid as long as the semaphore.
    [[nodiscard]] virtual Waitable& waitable() noexcept = 0;

  protected:
    ~ISemaphore() = default;
};

/// The class id of the semaphore that create_object() makes.
inline constexpr GUID kSemaphoreClass = "2f6fe29f-4a36-4ddc-a3f8-bb3b4682711b"_guid;
/// The class id of the semaphore whose one signal lets every thread through.
inline constexpr GUID kOneTimeSemaphoreClass = "a87126ad-4a45-498f-aa6b-6bdf89ea1f67"_guid;

namespace detail {

/// The semaphore without its interface. Signals are used up by waiting, or (`oneTime`) stay once given.
class CORE_API SemaphoreEngine final : public Waitable {
  public:
    explicit SemaphoreEngine(bool oneTime) noexcept : oneTime_(oneTime) {}
    ~SemaphoreEngine() = default;

    [[nodiscard]] bool wait(std::chrono::milliseconds timeout);
    void signal() noexcept;
    /// Whether a signal is there; another thread may use it up at once.
    [[nodiscard]] bool signalled() const noexcept;
    /// The same as wait(), but a stop does not end it.
    void waitThroughStops();

  private:
    bool tryTake(std::uint32_t way) noexcept override;
    void giveBack(std::uint32_t way) noexcept override;
    void admit(WaitQueue& queue) noexcept override;

    std::atomic<std::uint64_t> state_{0}; // the signals, and the highest bit while threads wait
    const bool oneTime_;
};

/// The semaphore under the interface `Base`.
template <class Base, bool oneTime>
class SemaphoreOf : public Base {
  public:
    using Interfaces = InterfaceList<ISemaphore>;

    bool wait(std::chrono::milliseconds timeout) override { return engine_.wait(timeout); }
    void signal() override { engine_.signal(); }
    Waitable& waitable() noexcept override { return engine_; }

  private:
    SemaphoreEngine engine_{oneTime};
};

} // namespace detail

/// A semaphore whose signals each let one waiting thread through, as a member of an object that owns it: its
/// references count nothing.
class ISemaphoreImpl final : public detail::SemaphoreOf<IUnknownImpl<ISemaphoreImpl, ISemaphore>, false> {};

/// A semaphore that lets every thread through once it was signalled, as a member of an object that owns it.
class ISemaphoreOneTimeImpl final
    : public detail::SemaphoreOf<IUnknownImpl<ISemaphoreOneTimeImpl, ISemaphore>, true> {};

} // namespace core
