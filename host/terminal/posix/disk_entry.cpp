// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/disk_entry.h"

#include <sys/stat.h>

namespace host {

std::optional<DiskEntry> disk_entry(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return DiskEntry{
        .isFile = S_ISREG(status.st_mode),
        .isFolder = S_ISDIR(status.st_mode),
        .keepsNothing = S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode),
        .size = static_cast<std::uint64_t>(status.st_size),
        .modified = status.st_mtime,
        .id = {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)}};
}

} // namespace host
