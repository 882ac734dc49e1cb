// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace core {

/// The names in a folder, one after the other. The iterator of the standard library ends the program where
/// memory runs out; this one takes none that could.
class FolderEntries {
  public:
    /// Opens a folder, the current one if the path is empty.
    explicit FolderEntries(const std::string& folder) noexcept;
    FolderEntries(const FolderEntries&) = delete;
    FolderEntries& operator=(const FolderEntries&) = delete;
    ~FolderEntries();

    /// Returns the next name, borrowed until the next call; null at the end and after a failure.
    [[nodiscard]] const char* next() noexcept;
    /// Returns the system's number of the failure that ended the walk; 0 for none.
    [[nodiscard]] int error() const noexcept { return error_; }
    /// Removes a file of the folder, as far as that can be done.
    void remove(const char* name) noexcept;

  private:
    struct Walk;
    Walk* walk_; // null for a folder that could not be opened
    int error_;
};

} // namespace core
