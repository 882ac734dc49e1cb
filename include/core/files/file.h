// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/interface_ptr.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace core {

/// No offset and no length of a file is greater: to the system they are signed numbers of 64 bits.
inline constexpr std::uint64_t kMaxFileLength = std::numeric_limits<std::int64_t>::max();

/// What the offset of a seek counts from.
enum class SeekOrigin : std::int32_t {
    begin = 1,   ///< The start of the file.
    current = 2, ///< The current position.
    end = 4,     ///< The end of the file.
};

/// How a file is opened. All modes except `read` also allow writing.
enum class OpenMode : std::int32_t {
    read = 0,      ///< The file must exist.
    readWrite = 1, ///< The file must exist.
    create = 2,    ///< The file is made when it does not exist.
    replace = 3,   ///< The file is made, or emptied.
    createNew = 4, ///< The file is made; it must not exist.
};

/// A random-access file of bytes: on disk, in memory, or inside a container. Everything that touches a disk
/// stands on this interface, so a program or a test can put its own file underneath.
///
/// Offsets and lengths are bytes. Every call can throw FileException with the file's URL and the system's
/// reason, or what its scheme throws for a file of its own. Threads: one at a time, except that disk and
/// memory files take positioned calls from any thread.
class IFile : public IUnknown {
  public:
    static constexpr GUID IID = "4a1aeab8-fb4d-45df-929e-8e7e56ccb89b"_guid;

    // At an offset. The current position is neither used nor changed.

    /// Reads up to `count` bytes at `offset` into `buffer` and returns how many. Returns 0 only
    /// at the end of the file or when `count` is 0. It may return fewer than there are; read_all_at()
    /// insists.
    virtual std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) = 0;
    /// Writes up to `count` bytes from `buffer` at `offset` and returns how many, at least one
    /// unless `count` is 0. A gap between the old end and `offset` reads as zeros; write_all_at() insists.
    virtual std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) = 0;

    // At the current position, which is the start of a file just opened.

    /// Reads as readAt() does at the current position, and moves it behind what was read.
    virtual std::size_t read(void* buffer, std::size_t count) = 0;
    /// Writes as writeAt() does at the current position, and moves it behind what was written.
    virtual std::size_t write(const void* buffer, std::size_t count) = 0;
    /// Moves the current position to `offset` bytes from `origin` and returns it, counted from the start. It
    /// may lie beyond the end. An offset before the start is refused; the current position stays.
    virtual std::uint64_t seek(std::int64_t offset, SeekOrigin origin) = 0;

    // The whole file.

    /// Returns the length of the file.
    [[nodiscard]] virtual std::uint64_t length() = 0;
    /// Sets the length of the file: cuts the rest off, or appends zeros.
    virtual void truncate(std::uint64_t length) = 0;
    /// Returns when everything written so far is durable. A failure means that what was written since the
    /// last flush may be lost; a second call that succeeds does not mean that it is there after all.
    virtual void flush() = 0;
    /// Ends the use of the file and reports what a late write fails at. Later calls of other functions throw;
    /// closing again does nothing. The last Release closes the file, too, but reports nothing.
    virtual void close() = 0;

    /// Returns the URL that the file was opened by. The reference is valid as long as the object.
    [[nodiscard]] virtual const wstring& url() const noexcept = 0;

  protected:
    ~IFile() = default;
};

/// What a lock keeps others from.
enum class LockKind : std::int32_t {
    shared,    ///< Others may have shared locks on the same bytes.
    exclusive, ///< Nobody else may have a lock on the same bytes.
};

/// A file that several processes can have open at once: locks on regions of it, which may lie beyond its end.
/// Locks bind only those who ask for them. They belong to this open file, not to the process, and end with
/// it. Files on disk and in memory have this interface.
class ISharedFile : public IUnknown {
  public:
    static constexpr GUID IID = "9c6d1c51-569c-4fdb-a228-e62cfba2263e"_guid;

    /// Locks `length` bytes from `offset` on and returns true, or returns false at once when the lock of
    /// another open file excludes it. Bytes that this file has locked before change their kind. Throws
    /// FileException when the region is empty or reaches beyond kMaxFileLength, or when the system cannot
    /// lock.
    [[nodiscard]] virtual bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) = 0;
    /// Gives back what this file has locked of `length` bytes from `offset` on, which may be nothing or a
    /// part. Throws as tryLock() does.
    virtual void unlock(std::uint64_t offset, std::uint64_t length) = 0;
    /// Returns whether `other` stands on the same bytes, whatever name it was opened by.
    [[nodiscard]] virtual bool isSameFile(IFile& other) = 0;

  protected:
    ~ISharedFile() = default;
};

} // namespace core
