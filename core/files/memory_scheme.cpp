// SPDX-License-Identifier: Apache-2.0
#include "core/files/schemes.h"

#include <core/files/errors.h>
#include <core/files/memory_file.h>
#include <core/files/url.h>
#include <core/runtime/internal_class.h>

#include <cerrno>
#include <map>
#include <mutex>

namespace core {
namespace {

const wstring kMemoryScheme = u"mem";

/// Files in memory by name, as long as the file system that they belong to. An open file outlives its name.
class MemoryScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;

    const wstring& schemeName() const noexcept override { return kMemoryScheme; }
    URL parseURL(const wstring& url) const override { return split_url(url); }

    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        const std::lock_guard lock(mutex_);
        const wstring name = split_url(url).path;
        const auto found = files_.find(name);
        const bool exists = found != files_.end();
        if (!exists && (mode == OpenMode::read || mode == OpenMode::readWrite))
            throw_file_error(messages::kFileOpen, url, ENOENT);
        if (exists && mode == OpenMode::createNew)
            throw_file_error(messages::kFileOpen, url, EEXIST);
        const auto data = exists ? found->second : create_memory_data();
        auto file = open_memory_file(data, url);
        if (mode == OpenMode::replace)
            file->truncate(0);
        if (!exists)
            files_.emplace(name, data);
        return file;
    }

    std::vector<FileInfo> findFile(const wstring& pattern) override {
        const std::lock_guard lock(mutex_);
        std::vector<FileInfo> found;
        const wstring root = kMemoryScheme + u"://";
        for (const auto& [name, data] : files_) {
            if (matches_wildcard(name, split_url(pattern).path))
                found.push_back(
                    {.url = root + name, .name = name, .length = open_memory_file(data)->length()});
        }
        return found;
    }

    std::size_t remove(const wstring& pattern) override {
        const std::lock_guard lock(mutex_);
        const wstring path = split_url(pattern).path;
        const std::size_t count =
            std::erase_if(files_, [&](const auto& file) { return matches_wildcard(file.first, path); });
        if (count == 0 && !has_wildcard(path))
            throw_file_error(messages::kFileRemove, pattern, ENOENT);
        return count;
    }

    void copyFile(const wstring& from, const wstring& to) override {
        refuseSame(from, to);
        saveFile(*openURL(from, OpenMode::read), to);
    }

    void writeFile(const wstring& to, const FileWriter& write) override {
        const auto data = create_memory_data();
        write(*open_memory_file(data, to));
        const std::lock_guard lock(mutex_);
        files_[split_url(to).path] = data;
    }

    void moveFile(const wstring& from, const wstring& to) override {
        refuseSame(from, to);
        const std::lock_guard lock(mutex_);
        const auto source = files_.find(split_url(from).path);
        if (source == files_.end())
            throw_file_error(messages::kFileMove, from, ENOENT);
        files_[split_url(to).path] = source->second;
        files_.erase(source);
    }

  private:
    static void refuseSame(const wstring& from, const wstring& to) {
        if (split_url(from).path == split_url(to).path)
            throw_file_error(messages::kFileCopyOntoItself, to, EEXIST);
    }

    std::mutex mutex_;
    std::map<wstring, std::shared_ptr<MemoryFileData>> files_;
};

} // namespace

InterfacePtr<IFileScheme> create_memory_scheme() {
    return make_object<MemoryScheme>();
}

} // namespace core
