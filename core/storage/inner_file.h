// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/engine.h"

#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace core {

/// An inner file that is open, with a buffer that reads ahead while it is read in order: what FileWithBuffer
/// stands on, and what the container knows of it. Each call takes the container's mutex.
class InnerFile {
  public:
    virtual ~InnerFile() = default;
    InnerFile(const InnerFile&) = delete;
    InnerFile& operator=(const InnerFile&) = delete;

    [[nodiscard]] const wstring& name() const noexcept { return name_; }
    [[nodiscard]] const wstring& url() const noexcept { return url_; }

    [[nodiscard]] std::size_t readAt(std::uint64_t offset, std::span<std::byte> to);
    [[nodiscard]] std::uint64_t length();
    virtual void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual void truncate(std::uint64_t length) = 0;
    virtual void flush() = 0;
    virtual void close() = 0;

    // For the container.

    [[nodiscard]] virtual bool isWriter() const noexcept = 0;
    /// The content has been taken back.
    void lose() noexcept { lost_ = true; }
    [[nodiscard]] bool isUncommitted() const noexcept { return uncommitted_; }
    /// The content is committed now.
    void settle() noexcept { uncommitted_ = false; }
    /// Whether nobody else may open the file for writing, rename or remove it.
    [[nodiscard]] virtual bool isExclusive() const noexcept { return false; }

  protected:
    InnerFile(std::shared_ptr<StorageEngine> engine, wstring_view name);

    /// Reads from below the buffer; the range is within the file.
    virtual void fetch(std::uint64_t offset, std::span<std::byte> out) = 0;
    [[nodiscard]] virtual std::uint64_t size() const noexcept = 0;
    /// Throws once the file is closed.
    [[nodiscard]] StorageEngine& engine() const;
    [[nodiscard]] std::shared_ptr<StorageEngine> shared() const noexcept { return engine_; }
    [[nodiscard]] bool isLost() const noexcept { return lost_; }
    void requireNotLost() const;
    void setUncommitted(bool is) noexcept { uncommitted_ = is; }
    /// Keeps space of the container from being written to, in place of what was kept before. The caller holds
    /// the state that uses it.
    void keep(SpaceLocks::Ranges space);
    void forgetBuffer() noexcept { bufferLength_ = 0; }
    /// Lets go of the container, which forgets this file. Doing it again has no effect.
    void leave() noexcept;

    /// Bytes that are gathered or read ahead at most.
    static constexpr std::size_t kBuffer = std::size_t{64} << 10;

  private:
    std::shared_ptr<StorageEngine> engine_; // null once closed
    wstring name_;
    wstring url_;
    bool lost_ = false;
    bool uncommitted_ = false;
    SpaceLocks::Ranges kept_;

    std::vector<std::byte> buffer_;
    std::uint64_t bufferStart_ = 0;
    std::size_t bufferLength_ = 0;
    std::size_t ahead_ = 0;
};

} // namespace core
