// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/threads/thread_record.h"

#include <core/runtime/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace core::detail {

/// What stands first in the shared memory of every named lock.
struct NamedHeader {
    std::uint32_t magic;
    std::uint32_t kind;
    std::atomic<std::uint32_t> held; // not 0 while somebody has it who must be asked for, should he die
};

/// A kind of named lock, and how its memory is made.
struct NamedKind {
    std::uint32_t number;
    std::size_t size;                               // of its memory, which begins with a NamedHeader
    void (*init)(void* memory, std::uint32_t with); // in memory of zeros; throws ThreadException
};

/// Shared memory of a file, mapped until its end or until something else is mapped.
class SharedMapping {
  public:
    SharedMapping() noexcept = default;
    SharedMapping(const SharedMapping&) = delete;
    SharedMapping& operator=(const SharedMapping&) = delete;
    ~SharedMapping() { end(); }

    /// Maps the first `size` bytes of an open file. Returns the error number of the system; 0 when it is
    /// done.
    int map(int file, std::size_t size) noexcept;
    [[nodiscard]] void* get() const noexcept { return memory_; }

  private:
    void end() noexcept;

    void* memory_ = nullptr;
    std::size_t size_ = 0;
};

/// Shared memory that is found by a name: a file of this user in the folder for such memory.
///
/// 1. Who uses a file holds a shared file lock on it, which the system takes away when a process dies.
/// 2. A file gets its name when it is complete, by a link, so that no process sees it half made.
/// 3. The last user takes the exclusive file lock, which says that no other process uses the file, and
///    removes it. So does a process that makes a new name later, for the files of killed processes. A file
///    that was left held stays, so that its next user is told.
/// 4. A process that opens a file looks, after it has the shared lock, whether the file was removed.
class NamedMemory {
  public:
    /// Opens the memory of that name and kind, or makes it, initialised with `with`. Throws ThreadException.
    NamedMemory(const wstring& name, const NamedKind& kind, std::uint32_t with);
    NamedMemory(const NamedMemory&) = delete;
    NamedMemory& operator=(const NamedMemory&) = delete;
    ~NamedMemory();

    /// The memory, borrowed.
    template <class T>
    [[nodiscard]] T& as() const noexcept {
        return *static_cast<T*>(memory_.get());
    }
    [[nodiscard]] const wstring& name() const noexcept { return name_; }

  private:
    bool tryOpen();
    bool tryMake(std::uint32_t with);

    wstring name_;
    const NamedKind& kind_;
    std::string path_;
    int file_ = -1;
    SharedMapping memory_;
};

/// Sleeps while a word of the memory has a value, until it is woken, and 20 ms at most: nobody of another
/// process wakes it for a stop, and a process that was woken and then killed has not done what it was woken
/// for. Where the system cannot wait at shared memory, it is a moment. False, without a sleep, when the
/// deadline has passed.
bool sleep_at(std::atomic<std::uint32_t>& word, std::uint32_t value, const Deadline& deadline) noexcept;
/// Wakes one of those who sleep at a word of the memory.
void wake_one_at(std::atomic<std::uint32_t>& word) noexcept;

/// Throws the ThreadException of a named lock that the system refuses, with the system's words for `error`.
[[noreturn]] void fail_named(const wstring& name, int error);

} // namespace core::detail
