// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

namespace core::test {

/// What is done when a HookedFile is used.
struct FileHooks {
    std::function<void()> read = [] {};                   ///< Before each read.
    std::function<void(std::size_t)> write = [](auto) {}; ///< Before so many bytes are written.
    std::function<void()> flush = [] {};                  ///< In place of a flush.
};

/// A file over another one, which is slow, or used by others just at the moment that a test wants.
class HookedFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;
    HookedFile(InterfacePtr<IFile> file, FileHooks hooks)
        : FileImpl(file->url()), file_(std::move(file)), locks_(file_), hooks_(std::move(hooks)) {}

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        hooks_.read();
        return file_->readAt(offset, buffer, count);
    }
    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override {
        hooks_.write(count);
        return file_->writeAt(offset, buffer, count);
    }
    std::uint64_t length() override { return file_->length(); }
    void truncate(std::uint64_t length) override { file_->truncate(length); }
    void flush() override { hooks_.flush(); }
    void close() override { file_->close(); }
    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
        return locks_->tryLock(offset, length, kind);
    }
    void unlock(std::uint64_t offset, std::uint64_t length) override { locks_->unlock(offset, length); }
    bool isSameFile(IFile& other) override { return this == &other; }

  private:
    InterfacePtr<IFile> file_;
    InterfacePtr<ISharedFile> locks_;
    FileHooks hooks_;
};

} // namespace core::test
