// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/thread_record.h"
#include "core/runtime/threads/wait_queue.h"
#include "core/runtime/windows/system.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/named_lock.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <limits>
#include <system_error>

namespace core {
namespace detail {
namespace {

constexpr std::size_t kLongest = 150; // bytes of a name, as everywhere
constexpr auto kSlice = std::chrono::milliseconds(20);

[[noreturn]] void fail_named(const wstring& name, DWORD error) {
    throw_error<ThreadException>(messages::kLockOpen,
                                 {name, from_utf8(std::system_category().message(static_cast<int>(error)))});
}

/// Whether the calling thread, which holds a mutex, held it before. The system lets it in again, by whatever
/// handle, and counts: 1 is free, 0 is held, less is held more often.
bool is_held_twice(HANDLE mutex) noexcept {
    struct State {
        LONG count;
        BOOLEAN isHeldByCaller;
        BOOLEAN isAbandoned;
    };
    using Query = LONG(WINAPI*)(HANDLE, int, State*, ULONG, ULONG*);
    static const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryMutant")));
    State state{};
    return query(mutex, 0, &state, sizeof state, nullptr) >= 0 && state.count < 0;
}

} // namespace

/// An object of the system that is found by a name and goes with its last handle.
class NamedMemory {
  public:
    /// `open` makes the object under its name in the system, or opens it.
    template <class Open>
    NamedMemory(const wstring& name, Open open) : name_(name) {
        const std::string text = to_utf8(name);
        if (name.empty() || text.size() > kLongest || from_utf8(text) != name)
            throw_error<ThreadException>(messages::kLockName, {name});
        std::wstring system = L"Local\\core-lock-"; // of the session of a user
        for (const wchar unit : name)               // "\" divides names there
            system += unit == u'\\' ? L'/' : static_cast<wchar_t>(unit);
        handle_ = windows::Handle(open(system.c_str()));
        if (!handle_)
            fail_named(name, ::GetLastError());
    }

    [[nodiscard]] const wstring& name() const noexcept { return name_; }
    [[nodiscard]] HANDLE get() const noexcept { return handle_.get(); }

    /// Waits until the deadline; returns what the system says, WAIT_TIMEOUT behind it. In slices, since a
    /// stop of the thread wakes nobody who waits in the system.
    [[nodiscard]] DWORD wait(const Deadline& deadline) const {
        for (;;) {
            check_stop();
            auto time = kSlice;
            if (deadline)
                time = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(
                                      *deadline - std::chrono::steady_clock::now()),
                                  std::chrono::milliseconds::zero(), kSlice);
            const DWORD result = ::WaitForSingleObject(handle_.get(), static_cast<DWORD>(time.count()));
            if (result == WAIT_FAILED)
                fail_named(name_, ::GetLastError());
            if (result != WAIT_TIMEOUT || time == std::chrono::milliseconds::zero())
                return result;
        }
    }

  private:
    wstring name_;
    windows::Handle handle_;
};

} // namespace detail

NamedMutex::NamedMutex(const wstring& name)
    : memory_(std::make_unique<detail::NamedMemory>(
          name, [](const wchar_t* system) { return ::CreateMutexW(nullptr, FALSE, system); })) {}

NamedMutex::~NamedMutex() {
    if (holder_.load() == detail::thread_number())
        release();
}

NamedLockResult NamedMutex::tryLockFor(std::chrono::milliseconds timeout) {
    detail::check_stop();
    const DWORD result = memory_->wait(detail::deadline_after(timeout));
    if (result == WAIT_TIMEOUT)
        return NamedLockResult::timedOut;
    if (detail::is_held_twice(memory_->get())) {
        ::ReleaseMutex(memory_->get());
        throw_error<ThreadException>(messages::kLockHeld, {memory_->name()});
    }
    holder_.store(detail::thread_number());
    return result == WAIT_ABANDONED ? NamedLockResult::abandoned : NamedLockResult::locked;
}

void NamedMutex::unlock() {
    if (holder_.load() != detail::thread_number())
        throw_error<ThreadException>(messages::kLockNotHeld);
    release();
}

void NamedMutex::release() noexcept {
    holder_.store(0);
    ::ReleaseMutex(memory_->get());
}

NamedSemaphore::NamedSemaphore(const wstring& name, std::uint32_t initial)
    : memory_(std::make_unique<detail::NamedMemory>(name, [initial](const wchar_t* system) {
          constexpr LONG kMost = std::numeric_limits<LONG>::max();
          return ::CreateSemaphoreW(nullptr, static_cast<LONG>(std::min<std::uint32_t>(initial, kMost)),
                                    kMost, system);
      })) {}

NamedSemaphore::~NamedSemaphore() = default;

bool NamedSemaphore::wait(std::chrono::milliseconds timeout) {
    return memory_->wait(detail::deadline_after(timeout)) != WAIT_TIMEOUT;
}

void NamedSemaphore::signal() noexcept {
    ::ReleaseSemaphore(memory_->get(), 1, nullptr);
}

} // namespace core
