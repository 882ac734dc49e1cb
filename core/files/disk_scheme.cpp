// SPDX-License-Identifier: Apache-2.0
#include "core/files/schemes.h"

#include <core/files/disk_file.h>
#include <core/files/file_error.h>
#include <core/files/file_io.h>
#include <core/files/file_time.h>
#include <core/files/wildcard.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/random.h>
#include <core/runtime/utf8.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace core {
namespace {

namespace fs = std::filesystem;

const wstring kScheme = u"file";

std::string folder_of(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

bool is_same_file(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error);
}

FileInfo describe(const std::string& path) {
    FileInfo info{.url = file_url(path), .name = from_utf8(path.substr(folder_of(path).size()))};
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        info.isFolder = S_ISDIR(status.st_mode);
        info.length = info.isFolder ? 0 : static_cast<std::uint64_t>(status.st_size);
        info.modified = universal_date(std::chrono::system_clock::from_time_t(status.st_mtime));
    }
    return info;
}

class DiskScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;

    const wstring& schemeName() const noexcept override { return kScheme; }
    URL parseURL(const wstring& url) const override { return split_url(url); }
    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        return open_disk_file(file_path(url), mode);
    }

    std::vector<FileInfo> findFile(const wstring& pattern) override {
        std::vector<FileInfo> found;
        for (const std::string& path : matching(pattern))
            found.push_back(describe(path));
        return found;
    }

    std::size_t remove(const wstring& pattern) override {
        const std::vector<std::string> paths = matching(pattern);
        if (paths.empty() && !isPattern(pattern))
            throw_file_error("IDS_FILE_REMOVE", pattern, ENOENT);
        std::size_t count = 0;
        for (const std::string& path : paths) {
            std::error_code error;
            if (isPattern(pattern) && fs::is_directory(path, error))
                continue;
            if (!fs::remove(path, error) && error)
                throw_file_error("IDS_FILE_REMOVE", file_url(path), error.value());
            ++count;
        }
        return count;
    }

    void copyFile(const wstring& from, const wstring& to) override {
        const std::string source = file_path(from);
        if (is_same_file(source, file_path(to)))
            throw_file_error("IDS_FILE_COPY_ONTO_ITSELF", to, EEXIST);
        saveFile(*open_disk_file(source, OpenMode::read), to);
    }

    /// The target has its old bytes or the new ones, never a part: the copy is made beside it and renamed.
    void saveFile(IFile& content, const wstring& to) override {
        const std::string target = file_path(to);
        const std::string beside = target + "." + to_utf8(to_string(new_guid()));
        const auto output = open_disk_file(beside, OpenMode::createNew);
        try {
            copy_bytes(content, *output);
            output->flush();
            output->close();
            rename(beside, target);
        } catch (...) {
            std::error_code ignored;
            fs::remove(beside, ignored);
            throw;
        }
    }

    void moveFile(const wstring& from, const wstring& to) override {
        const std::string source = file_path(from);
        const std::string target = file_path(to);
        if (is_same_file(source, target))
            throw_file_error("IDS_FILE_COPY_ONTO_ITSELF", to, EEXIST);
        if (std::rename(source.c_str(), target.c_str()) == 0)
            return;
        if (errno != EXDEV)
            throw_file_error("IDS_FILE_MOVE", from, errno);
        copyFile(from, to);
        remove(file_url(source));
    }

  private:
    static bool isPattern(const wstring& url) { return has_wildcard(patternOf(url)); }

    /// The last part of the path, its escapes kept: an escaped "*" is a character, not a pattern.
    static wstring_view patternOf(const wstring& url) {
        const auto slash = url.rfind(u'/');
        return slash == wstring::npos ? wstring_view(url) : wstring_view(url).substr(slash + 1);
    }

    static std::vector<std::string> matching(const wstring& url) {
        const std::string whole = file_path(url);
        std::vector<std::string> paths;
        std::error_code error;
        if (!isPattern(url)) {
            if (fs::symlink_status(whole, error).type() != fs::file_type::not_found)
                paths.push_back(whole);
            return paths;
        }
        const std::string folder = folder_of(whole);
        const wstring pattern = from_utf8(whole.substr(folder.size()));
        fs::directory_iterator entries(folder.empty() ? std::string(".") : folder, error);
        if (error && error.value() != ENOENT)
            throw_file_error("IDS_FILE_READ", url, error.value());
        for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
            const std::string name = entries->path().filename().string();
            if (matches_wildcard(from_utf8(name), pattern))
                paths.push_back(folder + name);
        }
        if (error && error.value() != ENOENT)
            throw_file_error("IDS_FILE_READ", url, error.value());
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    static void rename(const std::string& from, const std::string& to) {
        if (std::rename(from.c_str(), to.c_str()) != 0)
            throw_file_error("IDS_FILE_MOVE", file_url(to), errno);
    }
};

} // namespace

InterfacePtr<IFileScheme> create_disk_scheme() {
    return SCOM_InternalClass<DiskScheme>::create();
}

} // namespace core
