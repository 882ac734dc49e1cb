// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/storage/layout.h>

#include <cstdint>

namespace core {

class Patience;

/// The locks by which processes share a container. They bind only those who ask for them:
///
/// - the header region, shared: while reading, so that the state that is read stays the committed one;
///   exclusive: while a commit replaces it;
/// - the gate, the byte behind the header: a reader passes it, a commit closes it, so that a stream of
///   readers cannot keep a commit out for ever;
/// - the turn, a byte far beyond the end of any container: held by the one process that makes changes;
/// - the queue, the bytes behind the turn: who has to wait for the turn comes in at the last one and moves up
///   one byte at a time. So the turn is had in the order of arrival, and who gives it back and wants it again
///   stands behind all who wait.
///
/// A file that is not an ISharedFile belongs to this process alone, and every lock is there at once.
class ContainerLock {
  public:
    ContainerLock(InterfacePtr<IFile> file, const StorageLayout& layout, wstring url)
        : file_(std::move(file)), shared_(file_), layout_(layout), url_(std::move(url)) {}

    /// The turn, as long as it lives.
    class Turn {
      public:
        explicit Turn(const ContainerLock& lock) : lock_(lock) { lock_.beginTurn(); }
        ~Turn() { lock_.endTurn(); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

      private:
        const ContainerLock& lock_;
    };

    [[nodiscard]] bool isShared() const noexcept { return static_cast<bool>(shared_); }
    [[nodiscard]] bool isSameFile(IFile& other) const { return shared_ && shared_->isSameFile(other); }

    // Each waits, and throws StorageException after 20 seconds; those who wait for the turn, after 20 seconds
    // in which nobody committed anything.

    void beginReading() const;
    void beginTurn() const;
    void beginCommit() const;

    /// Begins the turn if nobody has it nor waits for it.
    [[nodiscard]] bool tryTurn() const;

    // A lock that cannot be given back ends with the open file: nothing to report.

    void endReading() const noexcept;
    void endTurn() const noexcept;
    /// Leaves the header region locked for reading when `reading`.
    void endCommit(bool reading) const noexcept;

  private:
    void unlock(std::uint64_t offset, std::uint64_t length) const noexcept;
    void wait(std::uint64_t offset, std::uint64_t length, LockKind kind, Patience& patience) const;
    struct Queueing;
    void takePlace(std::uint64_t place, Queueing& queueing) const;
    [[nodiscard]] std::uint64_t changeCounter() const noexcept;

    InterfacePtr<IFile> file_;
    InterfacePtr<ISharedFile> shared_;
    const StorageLayout& layout_;
    wstring url_;
};

} // namespace core
