// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_folders.h"
#include "core/files/disk_node.h"
#include "core/files/disk_path.h"
#include "core/files/file_beside.h"
#include "core/files/schemes.h"
#include "core/runtime/folder_entries.h"
#include "core/runtime/native_path.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_time.h>
#include <core/files/url.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace core {
namespace {

namespace fs = std::filesystem;

const wstring kDiskScheme = u"file";

bool is_missing(int error) noexcept {
    return error == ENOENT || error == ENOTDIR;
}

/// What is known of a file, a folder or a link that leads nowhere; nothing when none of them is there, and a
/// reason in errno.
std::optional<FileInfo> info_of(const std::string& path) {
    auto node = disk_node(path, Links::themselves);
    if (!node)
        return std::nullopt;
    const std::string plain = without_end_slash(path);
    const bool isLink = node->kind == DiskNode::Kind::link;
    if (const auto target = isLink ? disk_node(path, Links::followed) : std::nullopt)
        node = target;
    const bool isFolder = node->kind == DiskNode::Kind::folder;
    return FileInfo{.url = file_url(path),
                    .name = from_utf8(plain.substr(plain.rfind('/') + 1)),
                    .length = isFolder ? 0 : node->length,
                    .modified = unix_date(node->modified.tv_sec, node->modified.tv_nsec),
                    .isFolder = isFolder,
                    .isLink = isLink,
                    .permissions = node->permissions};
}

/// The system's form of a time.
::timespec system_time(Date time) {
    constexpr std::int64_t kNanosecondsPerTick = 1'000'000'000 / kTicksPerSecond;
    const std::int64_t ticks = (time - kUnixEpoch).ticks();
    const std::int64_t seconds = ticks / kTicksPerSecond - (ticks % kTicksPerSecond < 0 ? 1 : 0);
    ::timespec result{};
    result.tv_sec = static_cast<decltype(result.tv_sec)>(seconds);
    result.tv_nsec = static_cast<long>((ticks - seconds * kTicksPerSecond) * kNanosecondsPerTick);
    return result;
}

class DiskScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;

    const wstring& schemeName() const noexcept override { return kDiskScheme; }
    URL parseURL(const wstring& url) const override { return split_url(url); }
    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        return open_disk_file(file_path(url), mode);
    }

    std::vector<FileInfo> findFile(const wstring& pattern) override {
        std::vector<FileInfo> found;
        for (const std::string& path : matching(plain_path(pattern))) {
            if (auto info = info_of(path)) // else it has just gone
                found.push_back(std::move(*info));
        }
        return found;
    }

    std::size_t remove(const wstring& named) override {
        const wstring pattern = plain_path(named);
        const std::vector<std::string> paths = matching(pattern);
        if (paths.empty() && !isPattern(pattern))
            throw_file_error(messages::kFileRemove, pattern, ENOENT);
        std::size_t count = 0;
        for (const std::string& path : paths) {
            const auto target = isPattern(pattern) ? disk_node(path, Links::followed) : std::nullopt;
            if (target && target->kind == DiskNode::Kind::folder)
                continue;
            const auto node = disk_node(path, Links::themselves);
            const bool isFolder = node && node->kind == DiskNode::Kind::folder;
            if (!(isFolder ? remove_one_folder(path) : remove_one_file(path)) && errno != ENOENT)
                throw_file_error(messages::kFileRemove, file_url(path), errno);
            ++count;
        }
        return count;
    }

    void copyFile(const wstring& from, const wstring& to) override {
        const std::string source = file_path(from);
        if (is_same_file(source, file_path(to)))
            throw_file_error(messages::kFileCopyOntoItself, to, EEXIST);
        saveFile(*open_disk_file(source, OpenMode::read), to);
    }

    /// The target has its old bytes or the new ones, never a part.
    void writeFile(const wstring& to, const FileWriter& write) override {
        const std::string target = file_path(to);
        const auto old = disk_node(target, Links::followed);
        // What replaces a file is nobody else's until it has the permissions of that.
        FileBeside file(target, old ? kPrivateFile : kPublicFile);
        write(file.content());
        if (old)
            file.setPermissions(old->permissions & 0777);
        if (!file.replace(target))
            throw_file_error(messages::kFileMove, to, errno);
    }

    void moveFile(const wstring& from, const wstring& to) override {
        const std::string source = file_path(from);
        const std::string target = file_path(to);
        if (is_same_file(source, target))
            throw_file_error(messages::kFileCopyOntoItself, to, EEXIST);
        if (rename_durably(source, target))
            return;
        if (errno != EXDEV)
            throw_file_error(messages::kFileMove, from, errno);
        copyFile(from, to);
        remove(file_url(source));
    }

    FileCapabilities capabilities() const noexcept override {
        return {.folders = true, .times = true, .permissions = true, .space = true};
    }

    std::optional<FileInfo> describe(const wstring& url) override {
        auto info = info_of(file_path(url));
        if (!info && !is_missing(errno))
            throw_file_error(messages::kFileRead, url, errno);
        return info;
    }

    void makeFolder(const wstring& url) override { make_folder(file_path(url)); }
    void removeFolder(const wstring& url) override { remove_folder(file_path(url)); }
    void copyFolder(const wstring& from, const wstring& to) override {
        copy_folder(file_path(from), file_path(to));
    }
    void moveFolder(const wstring& from, const wstring& to) override {
        move_folder(file_path(from), file_path(to));
    }

    void setAttributes(const wstring& url, const FileAttributes& attributes) override {
        const std::string path = file_path(url);
        std::optional<::timespec> modified;
        if (attributes.modified)
            modified = system_time(*attributes.modified);
        if (!set_times(path, {}, modified) ||
            (attributes.permissions && !set_permissions(path, *attributes.permissions & 07777)))
            throw_file_error(messages::kFileAttributes, url, errno);
    }

    FileSpace space(const wstring& url) override { return disk_space(file_path(url), url); }

  private:
    static bool isPattern(const wstring& url) { return has_wildcard(patternOf(url)); }

    /// The last part of the path, its escapes kept: an escaped "*" is a character, not a pattern.
    static wstring_view patternOf(const wstring& url) {
        const auto slash = url.rfind(u'/');
        return slash == wstring::npos ? wstring_view(url) : wstring_view(url).substr(slash + 1);
    }

    /// The same for comparing with names of files: between the wildcards, all stands for itself.
    static wstring decodedPattern(const wstring& url) {
        const bool escaped = is_file_url(url);
        wstring_view rest = patternOf(url);
        wstring pattern;
        while (!rest.empty()) {
            const std::size_t count = std::min(rest.find_first_of(u"*?"), rest.size());
            const wstring_view piece = rest.substr(0, count);
            pattern += comparable(file_path(escaped ? wstring(u"file://").append(piece) : wstring(piece)));
            pattern += rest.substr(count, 1);
            rest.remove_prefix(std::min(count + 1, rest.size()));
        }
        return pattern;
    }

    /// A name as units among which neither a wildcard stands nor two names that differ are the same: halves
    /// of surrogate pairs, which no text in UTF-8 has, stand for bytes that are not UTF-8.
    static wstring comparable(const std::string& name) {
        constexpr unsigned kHalf = 0xDC00;
        wstring units = from_utf8(name);
        if (to_utf8(units) != name) {
            units.clear();
            for (const char c : name) {
                const auto byte = static_cast<unsigned char>(c);
                units.push_back(static_cast<wchar>(byte < 0x80 ? byte : kHalf | byte));
            }
        }
        for (wchar& unit : units) {
            if (unit == u'*' || unit == u'?')
                unit = static_cast<wchar>(kHalf | unit);
        }
        return units;
    }

    static std::vector<std::string> matching(const wstring& url) {
        std::vector<std::string> paths;
        std::error_code error;
        if (!isPattern(url)) {
            std::string whole = file_path(url);
            if (fs::symlink_status(native_path(whole), error).type() != fs::file_type::not_found)
                paths.push_back(std::move(whole));
            return paths;
        }
        const std::string folder = file_path(wstring_view(url).substr(0, url.rfind(u'/') + 1));
        const wstring pattern = decodedPattern(url);
        FolderEntries entries(folder);
        while (const char* const entry = entries.next()) {
            const std::string name = entry;
            if (matches_wildcard(comparable(name), pattern))
                paths.push_back(folder + name);
        }
        if (entries.error() != 0 && entries.error() != ENOENT)
            throw_file_error(messages::kFileRead, url, entries.error());
        std::sort(paths.begin(), paths.end());
        return paths;
    }
};

} // namespace

InterfacePtr<IFileScheme> create_disk_scheme() {
    return make_object<DiskScheme>();
}

} // namespace core
