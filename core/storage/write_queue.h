// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

/// Gathers neighbouring writes into one call. A failed flush() keeps what it could not write, so that trying
/// again loses nothing.
class WriteQueue {
  public:
    static constexpr std::size_t kCapacity = std::size_t{256} << 10;

    explicit WriteQueue(IFile& file) : file_(file) {}

    /// Room for the `count` bytes at `address`, to be filled in at once; `count` is at most kCapacity.
    [[nodiscard]] std::byte* extend(std::uint64_t address, std::size_t count);
    /// Replaces bytes that were written before, wherever they are by now.
    void patch(std::uint64_t address, std::span<const std::byte> bytes);
    [[nodiscard]] bool touches(std::uint64_t address, std::uint64_t count) const noexcept {
        return length_ != 0 && address < address_ + length_ && address_ < address + count;
    }
    void flush();
    /// Forgets what waits: nobody will read it.
    void drop() noexcept { length_ = 0; }

  private:
    IFile& file_;
    std::vector<std::byte> bytes_;
    std::uint64_t address_ = 0;
    std::size_t length_ = 0;
};

} // namespace core
