// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_node.h"

#include "core/files/schemes.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <new>
#include <system_error>

namespace core {
namespace {

// Without it the system refuses to describe a large file.
static_assert(sizeof(::off_t) == sizeof(std::int64_t), "build with _FILE_OFFSET_BITS=64");

constexpr ::mode_t kPermissionBits = 07777;

DiskNode::Kind kind_of(::mode_t mode) noexcept {
    if (S_ISREG(mode))
        return DiskNode::Kind::file;
    if (S_ISDIR(mode))
        return DiskNode::Kind::folder;
    return S_ISLNK(mode) ? DiskNode::Kind::link : DiskNode::Kind::other;
}

} // namespace

std::optional<DiskNode> disk_node(const std::string& path, Links links) noexcept {
    struct stat status {};
    if ((links == Links::followed ? ::stat : ::lstat)(path.c_str(), &status) != 0)
        return std::nullopt;
    return DiskNode{.kind = kind_of(status.st_mode),
                    .length = static_cast<std::uint64_t>(status.st_size),
                    .accessed = status.st_atim,
                    .modified = status.st_mtim,
                    .permissions = status.st_mode & kPermissionBits,
                    .disk = static_cast<std::uint64_t>(status.st_dev),
                    .number = static_cast<std::uint64_t>(status.st_ino)};
}

bool make_one_folder(const std::string& path, unsigned permissions) noexcept {
    return ::mkdir(path.c_str(), permissions) == 0;
}

bool remove_one_folder(const std::string& path) noexcept {
    return ::rmdir(path.c_str()) == 0;
}

bool remove_one_file(const std::string& path) noexcept {
    return ::unlink(path.c_str()) == 0;
}

bool remove_whole_folder(const std::string& path) noexcept {
    try {
        std::error_code error;
        std::filesystem::remove_all(path, error); // which no link that is put there meanwhile leads astray
        errno = error.default_error_condition().value();
        return !error;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

bool rename_node(const std::string& from, const std::string& to) noexcept {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

bool set_permissions(const std::string& path, unsigned permissions) noexcept {
    return ::chmod(path.c_str(), permissions) == 0;
}

bool set_times(const std::string& path, const std::optional<::timespec>& accessed,
               const std::optional<::timespec>& modified) noexcept {
    constexpr ::timespec kKept{.tv_sec = 0, .tv_nsec = UTIME_OMIT};
    const ::timespec times[2] = {accessed.value_or(kKept), modified.value_or(kKept)};
    return ::utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

FileSpace disk_space(const std::string& path, const wstring& url) {
    struct statvfs found {};
    if (::statvfs(path.c_str(), &found) != 0)
        throw_file_error(messages::kFileRead, url, errno);
    const std::uint64_t unit = found.f_frsize;
    return {.total = found.f_blocks * unit, .available = found.f_bavail * unit};
}

OpenDisk::OpenDisk(const std::string& folder)
    : folder_(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_ < 0 && errno != EACCES) // it may be one that can be written, not read
        throw_file_error(messages::kFileOpen, file_url(folder), errno);
}

OpenDisk::~OpenDisk() {
    if (folder_ >= 0)
        ::close(folder_);
}

bool OpenDisk::flushesFiles() const noexcept {
    return true;
}

int OpenDisk::flush() const noexcept {
#if defined(__linux__)
    if (folder_ >= 0)
        return ::syncfs(folder_) == 0 ? 0 : errno;
#endif
    ::sync();
    return 0;
}

} // namespace core
