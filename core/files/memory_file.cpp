// SPDX-License-Identifier: Apache-2.0
#include "core/files/region_locks.h"

#include <core/files/errors.h>
#include <core/files/file.h>
#include <core/files/file_impl.h>
#include <core/files/memory_file.h>
#include <core/runtime/internal_class.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace core {

class MemoryFileData {
  public:
    std::mutex mutex;
    std::vector<std::byte> bytes;
    RegionLocks locks;
};

namespace {

class MemoryFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;

    MemoryFile(std::shared_ptr<MemoryFileData> data, wstring url)
        : FileImpl(std::move(url)), data_(std::move(data)) {}
    ~MemoryFile() override { MemoryFile::close(); }

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        const auto lock = open(messages::kFileRead);
        const std::vector<std::byte>& bytes = data_->bytes;
        if (offset >= bytes.size() || count == 0)
            return 0;
        const std::size_t part = std::min(count, bytes.size() - static_cast<std::size_t>(offset));
        std::memcpy(buffer, bytes.data() + offset, part);
        return part;
    }

    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override {
        const auto lock = open(messages::kFileWrite);
        if (count == 0)
            return 0;
        if (offset > kMaxFileLength - count)
            throw_file_error(messages::kFileWrite, url(), EFBIG);
        if (offset + count > data_->bytes.size())
            resize(offset + count);
        std::memcpy(data_->bytes.data() + offset, buffer, count);
        return count;
    }

    std::uint64_t length() override {
        const auto lock = open(messages::kFileRead);
        return data_->bytes.size();
    }

    void truncate(std::uint64_t length) override {
        const auto lock = open(messages::kFileWrite);
        resize(length);
    }

    void flush() override {}

    void close() override {
        if (data_ == nullptr)
            return;
        {
            const std::lock_guard lock(data_->mutex);
            data_->locks.unlockAll(this);
        }
        data_.reset();
    }

    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
        const auto lock = open(messages::kFileLock);
        require_region(offset, length, url());
        return data_->locks.tryLock(this, offset, length, kind);
    }

    void unlock(std::uint64_t offset, std::uint64_t length) override {
        const auto lock = open(messages::kFileLock);
        require_region(offset, length, url());
        data_->locks.unlock(this, offset, length);
    }

    bool isSameFile(IFile& other) override {
        const auto* const file = dynamic_cast<MemoryFile*>(&other);
        return file != nullptr && file->data_ == data_;
    }

  private:
    std::unique_lock<std::mutex> open(const char* message) {
        if (data_ == nullptr)
            throw_file_error(message, url(), EBADF);
        return std::unique_lock(data_->mutex);
    }

    void resize(std::uint64_t length) {
        if (length > data_->bytes.max_size()) // also keeps the cast below from cutting it on a 32-bit host
            throw_file_error(messages::kFileWrite, url(), EFBIG);
        try {
            data_->bytes.resize(static_cast<std::size_t>(length));
        } catch (const std::bad_alloc&) {
            throw_file_error(messages::kFileWrite, url(), ENOSPC);
        }
    }

    std::shared_ptr<MemoryFileData> data_;
};

} // namespace

std::shared_ptr<MemoryFileData> create_memory_data() {
    return std::make_shared<MemoryFileData>();
}

InterfacePtr<IFile> open_memory_file(std::shared_ptr<MemoryFileData> data, wstring url) {
    return make_object<MemoryFile>(std::move(data), std::move(url));
}

} // namespace core
