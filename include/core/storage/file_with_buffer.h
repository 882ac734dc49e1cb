// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>
#include <core/storage/storage_rw.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace core {

class InnerFile;

/// An inner file of a container, open for reading: what StorageRW::open() returns for OpenMode::read. While
/// it is read in order it reads ahead. A component, made by `make_object<FileWithBuffer>(storage, name)`; it
/// keeps the container open.
///
/// It reads the content that the file had when it was opened, whole, also after the file has been replaced,
/// renamed or removed; that content takes space in the container until close(). Reading fails with
/// StorageException when the content was that of a transaction that was taken back. Calls after close() fail
/// with FileException. Threads: readAt() and writeAt() from any; the current position is the caller's to
/// guard.
class CORE_API FileWithBuffer : public FileImpl {
  public:
    /// The interfaces that the object answers queries for.
    using Interfaces = InterfaceList<IFile>;

    /// Opens an inner file for reading. Throws StorageException if no file has that name or its chain
    /// is damaged, and FileException from the file below.
    FileWithBuffer(const StorageRW& storage, wstring_view name);
    /// Closes the file. What was written by a FileWithBuffer2 is published, without a report of failures; it
    /// is given up when the destructor runs because of an exception.
    ~FileWithBuffer() override;

    /// Returns the name of the inner file, without URL. The reference is valid as long as the object lives.
    [[nodiscard]] const wstring& name() const noexcept;

    /// Reads up to `count` bytes at `offset` into `buffer`; returns how many, fewer only at the
    /// end.
    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override;
    /// Writes `count` bytes from `buffer` at `offset` and returns `count`. Zeros fill a gap
    /// behind the old end. Throws FileException when the file is open for reading, StorageException when the
    /// layout cannot address that much. After another failure the file is lost: nothing of it is published.
    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override;
    /// Returns the bytes of content, those included that are not published yet.
    [[nodiscard]] std::uint64_t length() override;
    /// Cuts the content at `length` bytes, or appends zeros up to there. Throws as writeAt() does.
    void truncate(std::uint64_t length) override;
    /// Publishes what was written and goes on: it is one commit, or part of the open transaction. Does
    /// nothing for a file that is open for reading.
    void flush() override;
    /// Publishes what was written and ends the use of the file. When it throws, nothing is published and the
    /// file is closed all the same. Closing again does nothing.
    void close() override;

  protected:
    /// Stands on an inner file that is open.
    explicit FileWithBuffer(std::unique_ptr<InnerFile> file);

  private:
    std::unique_ptr<InnerFile> file_;
};

/// An inner file of a container, open for reading and writing: what StorageRW::open() returns for all other
/// modes. Small writes are gathered. Nobody sees what was written before flush() or close() publishes it;
/// until then others may change the container, but through this handle nobody writes, renames or removes this
/// file. Publishing throws StorageException when somebody else has changed or removed the file since it was
/// opened or published, unless it was opened without a content: then it replaces the other one's. A
/// component, made by `make_object<FileWithBuffer2>(storage, name, mode)`.
class CORE_API FileWithBuffer2 : public FileWithBuffer {
  public:
    /// Opens or makes an inner file for writing, as `mode` says. Throws StorageException when the container
    /// was opened for reading only, when the file is open for writing through this handle already, does not
    /// exist (OpenMode::readWrite) or is damaged, and FileException when it exists (OpenMode::createNew) or
    /// `mode` is OpenMode::read. Writing waits for the container's turn now and then, as a change does.
    FileWithBuffer2(StorageRW& storage, wstring_view name, OpenMode mode);
};

} // namespace core
