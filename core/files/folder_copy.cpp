// SPDX-License-Identifier: Apache-2.0
#include "core/files/folder_copy.h"

#include "core/files/descriptor_file.h"
#include "core/files/disk_path.h"
#include "core/runtime/folder_entries.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace core {
namespace {

namespace fs = std::filesystem;

constexpr ::mode_t kOwnerOnly = 0700;
constexpr ::mode_t kPermissions = 0777; // whom a program runs as is not copied

[[noreturn]] void throw_not_copied(const std::string& path, int error) {
    throw_file_error(messages::kFileCopy, file_url(path), error);
}

void set_attributes(const std::string& path, const struct stat& status) {
    const struct timespec times[2] = {status.st_atim, status.st_mtim};
    if (::chmod(path.c_str(), status.st_mode & kPermissions) != 0 ||
        ::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0)
        throw_file_error(messages::kFileAttributes, file_url(path), errno);
}

void copy_file(const std::string& from, const std::string& to, const struct stat& status) {
    const auto source = open_disk_file(from, OpenMode::read);
    const auto target = open_disk_file(to, OpenMode::createNew, kPrivateFile);
    copy_bytes(*source, *target);
    target->close();
    set_attributes(to, status);
}

void copy_link(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::copy_symlink(from, to, error);
    if (error)
        throw_not_copied(from, error.value());
}

/// The disk of a folder, held open until everything on it is to be made durable: file by file that would
/// take as many flushes.
class DiskOf {
  public:
    explicit DiskOf(const std::string& folder)
        : folder_(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (folder_.number() < 0 && errno != EACCES) // it may be one that can be written, not read
            throw_file_error(messages::kFileOpen, file_url(folder), errno);
    }

    /// Returns the system's error number.
    [[nodiscard]] int flush() const noexcept {
#if defined(__linux__)
        if (folder_.number() >= 0)
            return ::syncfs(folder_.number()) == 0 ? 0 : errno;
#endif
        ::sync();
        return 0;
    }

  private:
    Descriptor folder_;
};

/// Removes what lies in a folder and is not a folder, then the folder. It takes one descriptor, which is
/// there even where a lack of them is what the copy failed at, and no memory that could be missing.
void remove_with_files(const std::string& folder) noexcept {
    FolderEntries entries(folder);
    while (const char* const name = entries.next())
        (void)::unlinkat(entries.descriptor(), name, 0);
    (void)::rmdir(folder.c_str());
}

} // namespace

FolderCopy::FolderCopy(std::string from, std::string to) {
    folders_.push_back({std::move(from), std::move(to), {}});
}

FolderCopy::~FolderCopy() {
    if (kept_)
        return;
    for (const Folder& folder : folders_) // one that may not be written cannot be emptied
        (void)::chmod(folder.to.c_str(), kOwnerOnly);
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
        remove_with_files(folder->to);
}

void FolderCopy::make() {
    const std::string from = folders_.front().from;
    try {
        const DiskOf disk(folder_of(path()));
        makeFolder(folders_.front());
        for (std::size_t i = 0; i < folders_.size(); ++i)
            copyEntries(i);
        // From the innermost on: what is made in a folder changes its time, and permissions may close it.
        for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
            set_attributes(folder->to, folder->status);
        if (const int error = disk.flush())
            throw_not_copied(from, error);
    } catch (const FileException& e) {
        if (e.url().starts_with(file_url(path()))) // nobody knows the name of what is being made
            throw_not_copied(from, e.systemError());
        throw;
    }
}

void FolderCopy::makeFolder(Folder& folder) {
    if (::stat(folder.from.c_str(), &folder.status) != 0)
        throw_not_copied(folder.from, errno);
    if (::mkdir(folder.to.c_str(), kOwnerOnly) != 0)
        throw_file_error(messages::kFileMakeFolder, file_url(folder.to), errno);
}

void FolderCopy::copyEntries(std::size_t folder) {
    const std::string from = folders_[folder].from; // the list grows meanwhile
    const std::string to = folders_[folder].to;
    FolderEntries entries(from);
    while (const char* const entry = entries.next()) {
        const std::string name = std::string("/") + entry;
        copyEntry(from + name, to + name);
    }
    if (entries.error() != 0)
        throw_not_copied(from, entries.error());
}

void FolderCopy::copyEntry(std::string from, std::string to) {
    struct stat status {};
    if (::lstat(from.c_str(), &status) != 0)
        throw_not_copied(from, errno);
    if (S_ISDIR(status.st_mode)) {
        folders_.push_back({std::move(from), std::move(to), {}});
        makeFolder(folders_.back());
    } else if (S_ISREG(status.st_mode)) {
        copy_file(from, to, status);
    } else if (S_ISLNK(status.st_mode)) {
        copy_link(from, to);
    } else {
        throw_not_copied(from, ENOTSUP);
    }
}

} // namespace core
