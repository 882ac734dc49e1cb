// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/folder_entries.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace core {
namespace {

/// The system's stream of entries, which is all of the walk.
::DIR* entries_of(void* walk) noexcept {
    return static_cast<::DIR*>(walk);
}

} // namespace

FolderEntries::FolderEntries(const std::string& folder) noexcept
    : walk_(reinterpret_cast<Walk*>(::opendir(folder.empty() ? "." : folder.c_str()))),
      error_(walk_ != nullptr ? 0 : errno) {}

FolderEntries::~FolderEntries() {
    if (walk_ != nullptr)
        ::closedir(entries_of(walk_));
}

const char* FolderEntries::next() noexcept {
    while (walk_ != nullptr) {
        errno = 0;
        const ::dirent* const entry = ::readdir(entries_of(walk_));
        if (entry == nullptr)
            break;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            return entry->d_name;
    }
    error_ = walk_ != nullptr ? errno : error_;
    return nullptr;
}

void FolderEntries::remove(const char* name) noexcept {
    if (walk_ != nullptr)
        (void)::unlinkat(::dirfd(entries_of(walk_)), name, 0);
}

} // namespace core
