// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/files/descriptor_file.h"

#include <string>
#include <utility>

namespace core {

/// The use of a file in shared memory by this process: an open descriptor with a shared file lock, which the
/// system takes away when the process dies. At its end the file goes, too, unless somebody else uses it.
///
/// 1. The last user asks for the exclusive file lock, which says that nobody else uses the file, and removes
///    it. Of two users that leave at once one gets it: asking gives the shared lock back first.
/// 2. A file that killed processes left is not locked. A process that opens it removes it and finds nothing;
///    one that makes or lists files removes all of them.
/// 3. A process that has got the shared lock looks whether the file was removed meanwhile.
class SharedMemoryUse {
  public:
    /// Begins to use the file that others use; empty when nobody does. Throws FileException with `url`.
    [[nodiscard]] static SharedMemoryUse join(const std::string& path, const wstring& url, bool readOnly);
    /// Makes a file and begins to use it; empty when somebody else was quicker. Throws FileException.
    [[nodiscard]] static SharedMemoryUse make(const std::string& path, const wstring& url);

    SharedMemoryUse(SharedMemoryUse&&) noexcept = default;
    SharedMemoryUse& operator=(SharedMemoryUse&&) = delete;
    ~SharedMemoryUse() { leave(descriptor_.number(), path_); }

    explicit operator bool() const noexcept { return descriptor_.number() >= 0; }
    [[nodiscard]] Descriptor takeDescriptor() noexcept { return std::move(descriptor_); }
    [[nodiscard]] std::string takePath() noexcept { return std::move(path_); }

    /// Removes the file at a path, open as `descriptor`, if nobody else uses it.
    static void leave(int descriptor, const std::string& path) noexcept;
    /// Removes the file at a path if nobody uses it.
    static void removeUnused(const std::string& path) noexcept;

  private:
    SharedMemoryUse(Descriptor descriptor, const std::string& path)
        : descriptor_(std::move(descriptor)), path_(path) {}

    Descriptor descriptor_;
    std::string path_;
};

/// A file in memory that processes share. It is read and written by offset and never mapped, so that neither
/// a lack of memory nor a file that is cut is a signal: both are what they are for a file on disk.
class SharedMemoryFile : public DescriptorFile {
  public:
    SharedMemoryFile(SharedMemoryUse use, wstring url)
        : DescriptorFile(use.takeDescriptor(), std::move(url)), path_(use.takePath()) {}
    ~SharedMemoryFile() override { SharedMemoryUse::leave(descriptor(), path_); }

    /// What the file grows by is reserved, or the file stays as it was.
    void truncate(std::uint64_t length) override;
    void flush() override {} // there is nothing that it could be flushed to
    void close() override;

  private:
    std::string path_;
};

} // namespace core
