// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <string>
#include <utility>

namespace core::detail {

/// A file that is closed, and with it unlocked, when it goes.
class OpenFile {
  public:
    enum class Lock { shared, exclusive }; // an exclusive one is not waited for

    explicit OpenFile(int file) noexcept : file_(file) {}
    OpenFile(OpenFile&& other) noexcept : file_(other.detach()) {}
    OpenFile& operator=(OpenFile&&) = delete;
    ~OpenFile();

    /// Opens a file that is there, or makes one that is not; without one, errno says why.
    [[nodiscard]] static OpenFile open(const std::string& path) noexcept;
    [[nodiscard]] static OpenFile make(const std::string& path) noexcept;

    [[nodiscard]] int get() const noexcept { return file_; }
    [[nodiscard]] int detach() noexcept { return std::exchange(file_, -1); }
    [[nodiscard]] bool lock(Lock how) const noexcept;
    /// Whether a name still leads to it.
    [[nodiscard]] bool isLinked() const noexcept;
    /// Whether it is a plain file of this user and of that size.
    [[nodiscard]] bool isOwn(std::size_t size) const noexcept;

  private:
    int file_;
};

/// Removes a name when it goes.
class RemovedFile {
  public:
    explicit RemovedFile(const std::string& path) noexcept : path_(path) {}
    RemovedFile(const RemovedFile&) = delete;
    RemovedFile& operator=(const RemovedFile&) = delete;
    ~RemovedFile();

  private:
    const std::string& path_;
};

/// The path of the file of a named lock. Throws ThreadException for a name that has none.
[[nodiscard]] std::string named_path(const wstring& name);
/// A path beside it that nobody else uses.
[[nodiscard]] std::string unfinished_path(const std::string& path);
/// Removes the files of this user's named locks that no process uses and that were not left held.
void remove_unused_files();

} // namespace core::detail
