// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <dirent.h>

#include <cerrno>
#include <memory>
#include <string>
#include <string_view>

namespace core {

/// The names in a folder, one after the other. The iterator of the standard library ends the program where
/// memory runs out; this one takes none that could.
class FolderEntries {
  public:
    /// Opens a folder, the current one if the path is empty.
    explicit FolderEntries(const std::string& folder) noexcept
        : entries_(::opendir(folder.empty() ? "." : folder.c_str())), error_(entries_ ? 0 : errno) {}

    /// Returns the next name, borrowed until the next call; null at the end and after a failure.
    [[nodiscard]] const char* next() noexcept {
        while (entries_) {
            errno = 0;
            const ::dirent* const entry = ::readdir(entries_.get());
            if (entry == nullptr)
                break;
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..")
                return entry->d_name;
        }
        error_ = entries_ ? errno : error_;
        return nullptr;
    }
    /// Returns the system's number of the failure that ended the walk; 0 for none.
    [[nodiscard]] int error() const noexcept { return error_; }
    /// Returns the descriptor of the open folder.
    [[nodiscard]] int descriptor() const noexcept { return ::dirfd(entries_.get()); }

  private:
    struct Close {
        void operator()(::DIR* entries) const noexcept { ::closedir(entries); }
    };
    std::unique_ptr<::DIR, Close> entries_;
    int error_;
};

} // namespace core
