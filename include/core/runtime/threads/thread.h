// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/code_hold.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/locale.h>
#include <core/runtime/threads/stop_token.h>
#include <core/runtime/threads/waitable.h>

#include <chrono>
#include <concepts>
#include <memory>
#include <utility>

namespace core {

class SCOM_Process;

/// Work for a thread.
class IRunnable : public IUnknown {
  public:
    static constexpr GUID IID = "cef864b5-e626-4871-bde9-c3631166aab6"_guid;
    /// Does the work, on the thread that was started for it, and ends early when `stop` asks for it. What it
    /// throws reaches IUncaughtExceptions; ThreadDeath ends the thread in silence.
    virtual void run(const StopToken& stop) = 0;

  protected:
    ~IRunnable() = default;
};

namespace detail {
struct ThreadState;

template <class F>
class Runnable : public IRunnable, private CodeOf<F> {
  public:
    using Interfaces = InterfaceList<IRunnable>;

    explicit Runnable(F work) : CodeOf<F>(work), work_(std::move(work)) {}
    void run(const StopToken& stop) override {
        if constexpr (std::invocable<F&, StopToken>)
            work_(stop);
        else
            work_();
    }

  private:
    F work_;
};

} // namespace detail

/// Started work, and what the calling thread can ask of itself.
///
/// The new thread works in the process of the thread that starts it, which it keeps as long as it runs, and
/// speaks to its user in the same locale. Destroying a Thread asks it to stop and waits for its end; one that
/// destroys itself runs on to its end. One thread at a time uses an object of this class, but any thread may
/// call stop() and finished() while no other moves or destroys it.
class CORE_API Thread {
  public:
    /// Makes an object without a thread, which counts as finished.
    Thread() noexcept;
    /// Starts a thread that runs `work`, which must not be null, taking a reference to it until it has run.
    /// Systems show the first bytes of `name`. Throws ThreadException when the system refuses, std::bad_alloc
    /// without memory; no work was done then.
    Thread(const wstring& name, IRunnable* work);
    /// Starts a thread that calls `work(stop)`, or `work()`. Throws as above, and what moving `work` throws.
    template <class F>
    requires std::invocable<F&, StopToken> || std::invocable<F&> Thread(const wstring& name, F work)
        : Thread(name, make_object<detail::Runnable<F>>(std::move(work)).get()) {}
    Thread(Thread&& other) noexcept;
    Thread& operator=(Thread&& other) noexcept;
    /// Asks the thread to stop and waits for its end.
    ~Thread();

    /// Asks the thread to stop: its token says so, and its next wait or check() throws ThreadDeath, also the
    /// wait that it is in. What it does in destructors while an exception is on its way is not disturbed.
    void stop() noexcept;
    /// Waits for the end of the thread, at most `timeout`; false when the time passed. Throws ThreadDeath in
    /// a thread that is asked to stop itself, and ThreadException on the thread itself.
    bool join(std::chrono::milliseconds timeout = kForever);
    /// Whether the work is done, or was never given.
    [[nodiscard]] bool finished() const noexcept;
    /// Returns the name that it was started with, borrowed: valid as long as the object holds the thread.
    [[nodiscard]] const wstring& name() const noexcept;
    /// Returns what wait_any() and wait_all() wait at for the end of the thread, borrowed: valid as long as
    /// the object holds the thread, which must be there.
    [[nodiscard]] Waitable& waitable() noexcept;

    /// Throws ThreadDeath if the calling thread was asked to stop, or a StopScope asks for it. Takes some
    /// nanoseconds.
    static void check();
    /// Returns the name of the calling thread, empty for one that was not started here.
    [[nodiscard]] static wstring currentName();
    /// Returns the locale of the messages shown to this thread's user. Until one is set, it is the locale of
    /// the process's settings.
    [[nodiscard]] static Locale getResourceLocale();
    /// Sets the locale of the messages shown to this thread's user, until the thread ends. Locale() takes it
    /// back: the locale is again that of the process's settings.
    static void setResourceLocale(const Locale& locale);
    /// Waits for at least `time`, by the library's clock. Throws ThreadDeath.
    static void sleep(std::chrono::milliseconds time);
    /// Waits for at least that many milliseconds, by the library's clock. Throws ThreadDeath.
    static void sleep(std::int64_t milliseconds) { sleep(std::chrono::milliseconds(milliseconds)); }

  private:
    std::shared_ptr<detail::ThreadState> state_;
};

/// A thread as a component. Its last release asks it to stop and waits for its end.
class IThread : public IUnknown {
  public:
    static constexpr GUID IID = "575bed7a-04bd-4a58-8a53-fbcd08647066"_guid;
    /// Starts the thread, once, as the constructor of Thread does. Throws ThreadException when it was started
    /// before or when the system refuses.
    virtual void start(const wstring& name, IRunnable* work) = 0;
    /// Asks the thread to stop, as Thread::stop() does; no effect before it was started.
    virtual void stop() noexcept = 0;
    /// Waits for its end, as Thread::join() does; true at once before it was started.
    virtual bool join(std::chrono::milliseconds timeout) = 0;
    /// Whether the work is done, or was never started.
    [[nodiscard]] virtual bool finished() const noexcept = 0;
    /// Returns the name that it was started with, empty before.
    [[nodiscard]] virtual wstring name() const = 0;
    /// Returns what wait_any() and wait_all() wait at for its end, borrowed: valid as long as the object. It
    /// was started before.
    [[nodiscard]] virtual Waitable& waitable() noexcept = 0;

  protected:
    ~IThread() = default;
};

/// The class id of the thread that create_object() makes.
inline constexpr GUID kThreadClass = "54aa2d18-dcb4-43d9-a380-b735371515ce"_guid;

/// Asks the threads that were started in `process` to stop and waits for their end. A process that is about
/// to go calls it. The calling thread is left out.
CORE_API void end_threads(SCOM_Process* process) noexcept;

} // namespace core
