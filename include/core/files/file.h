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
enum class SeekOrigin : std::int32_t { begin = 1, current = 2, end = 4 };

/// How a file is opened. All but `read` allow writing, too.
enum class OpenMode : std::int32_t {
    read = 0,      ///< must exist
    readWrite = 1, ///< must exist
    create = 2,    ///< made when it does not exist
    replace = 3,   ///< made, or emptied
    createNew = 4, ///< must not exist
};

/// A random-access file of bytes: on disk, in memory, or inside a container. Everything that touches a disk
/// stands on this interface, so a program or a test can put its own file underneath.
///
/// Errors: FileException with the file's URL and the system's reason, or what its scheme throws for a file of
/// its own. Threads: one at a time, except that disk and memory files take positioned calls from any thread.
class IFile : public IUnknown {
  public:
    static constexpr GUID IID = "4a1aeab8-fb4d-45df-929e-8e7e56ccb89b"_guid;

    // By position; the current position neither counts nor moves.

    /// Reads up to `count` bytes and returns how many; 0 only at the end of the file (or for a count of 0).
    /// May be short for other reasons: read_all_at() insists.
    virtual std::size_t readAt(std::uint64_t position, void* buffer, std::size_t count) = 0;
    /// Writes up to `count` bytes, at least one, and returns how many. Beyond the end the gap reads as zeros.
    virtual std::size_t writeAt(std::uint64_t position, const void* buffer, std::size_t count) = 0;

    // At the current position, which moves by what was read or written.

    virtual std::size_t read(void* buffer, std::size_t count) = 0;
    virtual std::size_t write(const void* buffer, std::size_t count) = 0;
    /// Returns the new position, counted from the start; a position beyond the end is one, too.
    virtual std::uint64_t seek(std::int64_t offset, SeekOrigin origin) = 0;

    // The whole file.

    [[nodiscard]] virtual std::uint64_t length() = 0;
    /// Sets the length: cuts the rest off, or appends zeros.
    virtual void truncate(std::uint64_t length) = 0;
    /// Returns when everything written so far is durable. A failure means that what was written since the
    /// last flush may be lost; calling again says nothing about it.
    virtual void flush() = 0;
    /// Ends the use of the file and reports what a late write still fails at; the last Release does the same
    /// but can report nothing. Further calls fail, closing again does not.
    virtual void close() = 0;

    [[nodiscard]] virtual const wstring& url() const noexcept = 0;

  protected:
    ~IFile() = default;
};

enum class LockKind : std::int32_t { shared, exclusive };

/// A file that several processes can have open at once: locks on regions of it, which may lie
/// beyond its end. Locks bind only those who ask for them. They belong to this open file, not to
/// the process, and end with it.
class ISharedFile : public IUnknown {
  public:
    static constexpr GUID IID = "9c6d1c51-569c-4fdb-a228-e62cfba2263e"_guid;

    /// Never waits: false when another open file holds a lock that excludes this one. A region that this file
    /// has locked before changes its kind. Throws only when the system cannot lock at all.
    [[nodiscard]] virtual bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) = 0;
    virtual void unlock(std::uint64_t offset, std::uint64_t length) = 0;
    /// Whether `other` stands on the same bytes, opened by whatever name.
    [[nodiscard]] virtual bool isSameFile(IFile& other) = 0;

  protected:
    ~ISharedFile() = default;
};

} // namespace core
