// SPDX-License-Identifier: Apache-2.0
#include "core/files/schemes.h"

#include <core/files/file_error.h>
#include <core/files/file_io.h>
#include <core/files/memory_file.h>
#include <core/files/wildcard.h>
#include <core/runtime/internal_class.h>

#include <cerrno>
#include <map>
#include <mutex>

namespace core {
namespace {

const wstring kScheme = u"mem";

/// Files in memory by name, as long as the file system that they belong to. An open file outlives its name.
class MemoryScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;

    const wstring& schemeName() const noexcept override { return kScheme; }
    URL parseURL(const wstring& url) const override { return split_url(url); }

    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        const std::lock_guard lock(mutex_);
        const wstring name = split_url(url).path;
        const bool exists = files_.contains(name);
        if (!exists && (mode == OpenMode::read || mode == OpenMode::readWrite))
            throw_file_error("IDS_FILE_OPEN", url, ENOENT);
        if (exists && mode == OpenMode::createNew)
            throw_file_error("IDS_FILE_OPEN", url, EEXIST);
        std::shared_ptr<MemoryFileData>& data = files_[name];
        if (data == nullptr)
            data = create_memory_data();
        auto file = open_memory_file(data, url);
        if (mode == OpenMode::replace)
            file->truncate(0);
        return file;
    }

    std::vector<FileInfo> findFile(const wstring& pattern) override {
        const std::lock_guard lock(mutex_);
        std::vector<FileInfo> found;
        for (const auto& [name, data] : files_) {
            if (matches_wildcard(name, split_url(pattern).path))
                found.push_back({.url = kScheme + u"://" + name,
                                 .name = name,
                                 .length = open_memory_file(data)->length()});
        }
        return found;
    }

    std::size_t remove(const wstring& pattern) override {
        const std::lock_guard lock(mutex_);
        const wstring path = split_url(pattern).path;
        const std::size_t count =
            std::erase_if(files_, [&](const auto& file) { return matches_wildcard(file.first, path); });
        if (count == 0 && !has_wildcard(path))
            throw_file_error("IDS_FILE_REMOVE", pattern, ENOENT);
        return count;
    }

    void copyFile(const wstring& from, const wstring& to) override {
        refuseSame(from, to);
        saveFile(*openURL(from, OpenMode::read), to);
    }

    void saveFile(IFile& content, const wstring& to) override {
        const auto data = create_memory_data();
        copy_bytes(content, *open_memory_file(data));
        const std::lock_guard lock(mutex_);
        files_[split_url(to).path] = data;
    }

    void moveFile(const wstring& from, const wstring& to) override {
        refuseSame(from, to);
        const std::lock_guard lock(mutex_);
        auto node = files_.extract(split_url(from).path);
        if (node.empty())
            throw_file_error("IDS_FILE_MOVE", from, ENOENT);
        files_[split_url(to).path] = node.mapped();
    }

  private:
    static void refuseSame(const wstring& from, const wstring& to) {
        if (split_url(from).path == split_url(to).path)
            throw_file_error("IDS_FILE_COPY_ONTO_ITSELF", to, EEXIST);
    }

    std::mutex mutex_;
    std::map<wstring, std::shared_ptr<MemoryFileData>> files_;
};

} // namespace

InterfacePtr<IFileScheme> create_memory_scheme() {
    return SCOM_InternalClass<MemoryScheme>::create();
}

} // namespace core
