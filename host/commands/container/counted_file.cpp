// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/counted_file.h"

#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>
#include <core/storage/open_container.h>

#include <utility>

namespace host::container {

using namespace core;

namespace {

/// The file of a container, with a bar that is told what is read and written.
class CountedFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;

    CountedFile(InterfacePtr<IFile> file, InterfacePtr<ISharedFile> shared, std::optional<Progress>& progress)
        : FileImpl(file->url()), file_(std::move(file)), shared_(std::move(shared)), progress_(progress) {}

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        return counted(file_->readAt(offset, buffer, count));
    }
    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override {
        return counted(file_->writeAt(offset, buffer, count));
    }
    std::uint64_t length() override { return file_->length(); }
    void truncate(std::uint64_t length) override { file_->truncate(length); }
    void flush() override { file_->flush(); }
    void close() override { file_->close(); }

    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
        return shared_->tryLock(offset, length, kind);
    }
    void unlock(std::uint64_t offset, std::uint64_t length) override { shared_->unlock(offset, length); }
    bool isSameFile(IFile& other) override { return shared_->isSameFile(other); }

  private:
    std::size_t counted(std::size_t count) {
        if (progress_)
            progress_->add(count);
        return count;
    }

    InterfacePtr<IFile> file_;
    InterfacePtr<ISharedFile> shared_;
    std::optional<Progress>& progress_;
};

} // namespace

Watched::Watched(const Options& options, OpenMode mode, Console& console, const char* what,
                 std::uint64_t passes) {
    const auto count = [&](InterfacePtr<IFile> file) -> InterfacePtr<IFile> {
        progress_.emplace(console, what, passes * file->length());
        auto shared = file.query<ISharedFile>();
        if (!shared)
            return file;
        return make_object<CountedFile>(std::move(file), std::move(shared), progress_);
    };
    storage_ = open_container(options.file, mode, options.wide ? kStorageLayout64 : kStorageLayout32, count);
}

} // namespace host::container
