// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files.h>
#include <core/runtime.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <utility>

namespace core::test {

/// Which call of the files of a scheme fails.
struct FaultPlan {
    static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t calls = 0;
    std::uint64_t failAt = kNever;
    bool failed = false;

    void call(const wstring& url) {
        if (calls++ == failAt) {
            failed = true;
            throw_file_error(messages::kFileWrite, url, EIO);
        }
    }
};

/// A file in memory of which each call can fail.
class PlannedFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;
    PlannedFile(InterfacePtr<IFile> file, FaultPlan& plan)
        : FileImpl(file->url()), file_(std::move(file)), shared_(file_), plan_(plan) {}

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        plan_.call(url());
        return file_->readAt(offset, buffer, count);
    }
    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override {
        plan_.call(url());
        return file_->writeAt(offset, buffer, count);
    }
    std::uint64_t length() override {
        plan_.call(url());
        return file_->length();
    }
    void truncate(std::uint64_t length) override {
        plan_.call(url());
        file_->truncate(length);
    }
    void flush() override {
        plan_.call(url());
        file_->flush();
    }
    void close() override { file_->close(); }
    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
        plan_.call(url());
        return shared_->tryLock(offset, length, kind);
    }
    void unlock(std::uint64_t offset, std::uint64_t length) override { shared_->unlock(offset, length); }
    bool isSameFile(IFile& other) override {
        const auto* const file = dynamic_cast<PlannedFile*>(&other);
        return file != nullptr && shared_->isSameFile(*file->file_);
    }

  private:
    InterfacePtr<IFile> file_;
    InterfacePtr<ISharedFile> shared_;
    FaultPlan& plan_;
};

/// The scheme "fault", whose files lie in memory.
class FaultScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;
    explicit FaultScheme(FaultPlan& plan) : plan_(plan), files_(create_file_system()) {}

    const wstring& schemeName() const noexcept override {
        static const wstring name = u"fault";
        return name;
    }
    URL parseURL(const wstring& url) const override { return split_url(url); }
    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        plan_.call(url);
        return make_object<PlannedFile>(files_->openURL(inMemory(url), mode), plan_);
    }
    std::vector<FileInfo> findFile(const wstring& pattern) override {
        plan_.call(pattern);
        std::vector<FileInfo> found = files_->findFile(inMemory(pattern));
        for (FileInfo& info : found)
            info.url = u"fault://" + split_url(info.url).path;
        return found;
    }
    std::size_t remove(const wstring& pattern) override { return files_->remove(inMemory(pattern)); }
    void copyFile(const wstring& from, const wstring& to) override {
        plan_.call(from);
        files_->copyFile(inMemory(from), inMemory(to));
    }
    void moveFile(const wstring& from, const wstring& to) override {
        plan_.call(from);
        files_->moveFile(inMemory(from), inMemory(to));
    }

  private:
    static wstring inMemory(const wstring& url) { return u"mem://" + split_url(url).path; }

    FaultPlan& plan_;
    InterfacePtr<IFileSystem> files_;
};

} // namespace core::test
