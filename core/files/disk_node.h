// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <time.h>

#include <cstdint>
#include <optional>
#include <string>

/// What stands on the disk, as the system tells and changes it. Each function that returns false, or nothing,
/// has the system's reason in errno.
namespace core {

/// A file, a folder or something else at a path.
struct DiskNode {
    enum class Kind { file, folder, link, other };

    Kind kind = Kind::other;
    std::uint64_t length = 0;
    ::timespec accessed{}; // since 1970
    ::timespec modified{};
    unsigned permissions = 0; // with the bits of POSIX
    std::uint64_t disk = 0;   // no other node has the same two
    std::uint64_t number = 0;
};

enum class Links { followed, themselves };

[[nodiscard]] std::optional<DiskNode> disk_node(const std::string& path, Links links) noexcept;

[[nodiscard]] bool make_one_folder(const std::string& path, unsigned permissions) noexcept;
/// An empty one.
bool remove_one_folder(const std::string& path) noexcept;
/// Or a link, whatever it leads to.
bool remove_one_file(const std::string& path) noexcept;
/// A folder with all that lies in it, links but not what they lead to.
[[nodiscard]] bool remove_whole_folder(const std::string& path) noexcept;
/// Replaces a file at `to`.
[[nodiscard]] bool rename_node(const std::string& from, const std::string& to) noexcept;
bool set_permissions(const std::string& path, unsigned permissions) noexcept;
/// Those that are given.
[[nodiscard]] bool set_times(const std::string& path, const std::optional<::timespec>& accessed,
                             const std::optional<::timespec>& modified) noexcept;

/// A disk, held open until everything that was copied to it is to be made durable.
class OpenDisk {
  public:
    /// The disk of a folder, the current one if the path is empty. Throws FileException.
    explicit OpenDisk(const std::string& folder);
    OpenDisk(const OpenDisk&) = delete;
    OpenDisk& operator=(const OpenDisk&) = delete;
    ~OpenDisk();

    /// Whether flush() makes files durable that were not flushed themselves.
    [[nodiscard]] bool flushesFiles() const noexcept;
    /// Returns the system's error number.
    [[nodiscard]] int flush() const noexcept;

  private:
    int folder_; // a descriptor; -1 where none is needed
};

} // namespace core
