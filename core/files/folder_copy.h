// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/files/disk_node.h"

#include <string>
#include <vector>

namespace core {

/// A copy of a folder in the making. Unless it is kept, it is removed at the end.
class FolderCopy {
  public:
    FolderCopy(std::string from, std::string to);
    FolderCopy(const FolderCopy&) = delete;
    FolderCopy& operator=(const FolderCopy&) = delete;
    ~FolderCopy();

    /// Copies everything and makes it durable. Links are copied as links. Throws FileException, also for
    /// what is neither a file nor a folder nor a link: to read a pipe could take for ever.
    void make();
    void keep() noexcept { kept_ = true; }
    [[nodiscard]] const std::string& path() const noexcept { return folders_.front().to; }

  private:
    /// A folder of the source and the one that is made of it.
    struct Folder {
        std::string from;
        std::string to;
        DiskNode node; // of the source
    };

    void makeFolder(Folder& folder);
    void copyEntries(std::size_t folder, const OpenDisk& disk);
    void copyEntry(std::string from, std::string to, const OpenDisk& disk);

    std::vector<Folder> folders_; // each behind the one that it lies in
    bool kept_ = false;
};

} // namespace core
