// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

class WriteQueue;

/// Reads a container's file through one window, so that neighbouring blocks cost one call. What the window
/// holds is good until the file may have changed: forget() then.
class BlockReader {
  public:
    BlockReader(IFile& file, const StorageLayout& layout)
        : file_(file), layout_(layout), end_(layout.limit()) {}

    [[nodiscard]] const StorageLayout& layout() const noexcept { return layout_; }
    /// No block reaches beyond this address.
    [[nodiscard]] std::uint64_t end() const noexcept { return end_; }
    void setEnd(std::uint64_t end) noexcept { end_ = end; }
    /// What waits in `queue` is written before it could be missed.
    void setQueue(WriteQueue* queue) noexcept { queue_ = queue; }

    /// The bytes at `address`: at least `need` of them, unless the file ends before. When they have to be
    /// fetched, up to `wish` bytes are fetched at once, within some limits. Valid until the next call.
    [[nodiscard]] std::span<const std::byte> at(std::uint64_t address, std::size_t need, std::uint64_t wish);
    /// Reads past the window; returns false when the file ends before `bytes` is full.
    [[nodiscard]] bool readAround(std::uint64_t address, std::span<std::byte> bytes);
    void forget() noexcept { length_ = 0; }
    /// Memory for what is read past the window. Valid until the next call of this function.
    [[nodiscard]] std::span<std::byte> scratch(std::size_t size) {
        if (scratch_.size() < size)
            scratch_.resize(size);
        return std::span(scratch_).first(size);
    }

  private:
    void settle(std::uint64_t address, std::uint64_t length);

    IFile& file_;
    const StorageLayout& layout_;
    WriteQueue* queue_ = nullptr;
    std::uint64_t end_;
    std::vector<std::byte> window_;
    std::vector<std::byte> scratch_;
    std::uint64_t address_ = 0;
    std::size_t length_ = 0;
};

} // namespace core
