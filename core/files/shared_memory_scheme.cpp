// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_node.h"
#include "core/files/schemes.h"
#include "core/files/shared_memory_file.h"
#include "core/runtime/folder_entries.h"
#include "core/runtime/shared_folder.h"

#include <core/files/errors.h>
#include <core/files/file_time.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace core {
namespace {

const wstring kSharedScheme = u"shm";

/// What the files of this user begin with.
std::string prefix() {
    return detail::shared_prefix("core-shm");
}

std::string path_of(const wstring& url) {
    const wstring name = split_url(url).path;
    const std::string text = to_utf8(name);
    if (name.empty() || from_utf8(text) != name)
        throw_file_error(messages::kFileOpen, url, EINVAL);
    return detail::shared_folder() + prefix() + detail::shared_file_name(text);
}

/// A file that some process uses.
struct Found {
    std::string path;
    wstring name;
};

/// The files with names that match the path of `pattern`, by name. What killed processes left is removed.
std::vector<Found> matching(const wstring& pattern) {
    const wstring names = split_url(pattern).path;
    const std::string begin = prefix();
    std::vector<Found> found;
    const std::string folder = detail::shared_folder();
    FolderEntries entries(folder);
    while (const char* const entry = entries.next()) {
        const std::string file = entry;
        if (!file.starts_with(begin))
            continue;
        const std::string path = folder + file;
        SharedMemoryUse::removeUnused(path);
        wstring name = from_utf8(unescape_url(from_utf8(file.substr(begin.size()))));
        if (matches_wildcard(name, names) && disk_node(path, Links::followed))
            found.push_back({path, std::move(name)});
    }
    if (entries.error() != 0)
        throw_file_error(messages::kFileRead, pattern, entries.error());
    std::ranges::sort(found, {}, &Found::name);
    return found;
}

/// Files in memory by name, which all processes of a user see. A file is there as long as some process has it
/// open.
class SharedMemoryScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;

    const wstring& schemeName() const noexcept override { return kSharedScheme; }
    URL parseURL(const wstring& url) const override { return split_url(url); }
    FileCapabilities capabilities() const noexcept override { return {.keeps = false, .space = true}; }

    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        const std::string path = path_of(url);
        const bool mustExist = mode == OpenMode::read || mode == OpenMode::readWrite;
        for (;;) {
            if (auto use = SharedMemoryUse::join(path, url, mode == OpenMode::read)) {
                if (mode == OpenMode::createNew)
                    throw_file_error(messages::kFileOpen, url, EEXIST);
                auto file = make_object<SharedMemoryFile>(std::move(use), url);
                if (mode == OpenMode::replace)
                    file->truncate(0);
                return file;
            }
            if (mustExist)
                throw_file_error(messages::kFileOpen, url, ENOENT);
            (void)matching(url); // removes what killed processes left
            if (auto use = SharedMemoryUse::make(path, url))
                return make_object<SharedMemoryFile>(std::move(use), url);
        }
    }

    std::vector<FileInfo> findFile(const wstring& pattern) override {
        std::vector<FileInfo> files;
        for (Found& file : matching(pattern)) {
            if (const auto node = disk_node(file.path, Links::followed))
                files.push_back({.url = kSharedScheme + u"://" + file.name,
                                 .name = std::move(file.name),
                                 .length = node->length,
                                 .modified = unix_date(node->modified.tv_sec, node->modified.tv_nsec)});
        }
        return files;
    }

    /// Takes the names away; the files stay for those who have them open.
    std::size_t remove(const wstring& pattern) override {
        const std::vector<Found> files = matching(pattern);
        if (files.empty() && !has_wildcard(pattern))
            throw_file_error(messages::kFileRemove, pattern, ENOENT);
        for (const Found& file : files) {
            if (!remove_one_file(file.path) && errno != ENOENT)
                throw_file_error(messages::kFileRemove, kSharedScheme + u"://" + file.name, errno);
        }
        return files.size();
    }

    // A file that is written and closed would be gone.
    void copyFile(const wstring&, const wstring& to) override { unsupported(to); }
    void moveFile(const wstring&, const wstring& to) override { unsupported(to); }
    void writeFile(const wstring& to, const FileWriter&) override { unsupported(to); }

    FileSpace space(const wstring& url) override { return disk_space(detail::shared_folder(), url); }
};

} // namespace

InterfacePtr<IFileScheme> create_shared_memory_scheme() {
    return make_object<SharedMemoryScheme>();
}

} // namespace core
