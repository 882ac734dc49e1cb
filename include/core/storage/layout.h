// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace core {

/// What tells the two container layouts apart: the width of addresses, sizes and counters in the file, and
/// the address that means none. In memory all of them are 64-bit numbers. An address is an offset in bytes
/// from the start of the file. There are two objects of it, kStorageLayout32 and kStorageLayout64, and they
/// live for ever.
struct StorageLayout {
    wstring_view scheme; ///< The URL scheme, without "://".
    std::size_t width;   ///< Bytes of an address.
    std::uint64_t null;  ///< The address that stands for no block, the end of a chain, no chain.

    /// Returns the bytes of the container's header.
    [[nodiscard]] constexpr std::size_t headerSize() const noexcept { return 2 * width + 8; }
    /// Returns the hexadecimal digits of a number in a block header.
    [[nodiscard]] constexpr std::size_t digits() const noexcept { return 2 * width; }
    /// Returns the bytes of a block's header.
    [[nodiscard]] constexpr std::size_t blockHeaderSize() const noexcept { return 3 * digits() + 7; }
    /// Returns the bytes of a whole block whose data area has `size` bytes.
    [[nodiscard]] constexpr std::uint64_t blockLength(std::uint64_t size) const noexcept {
        return blockHeaderSize() + size;
    }
    /// Returns the address behind which no block reaches: every byte of a container has an address that is
    /// not null and that the system can seek to.
    [[nodiscard]] constexpr std::uint64_t limit() const noexcept {
        const std::uint64_t greatest = std::numeric_limits<std::int64_t>::max();
        return null < greatest ? null : greatest;
    }
    /// Returns the length of an empty container: its header and the first block of its table.
    [[nodiscard]] constexpr std::uint64_t emptyLength() const noexcept;
};

/// Bytes in the data area of every block that the library makes.
inline constexpr std::size_t kStorageBlockSize = 512;

constexpr std::uint64_t StorageLayout::emptyLength() const noexcept {
    return headerSize() + blockLength(kStorageBlockSize);
}

/// The layout with addresses of 4 bytes: containers of up to 2 GiB.
inline constexpr StorageLayout kStorageLayout32{u"lumstg", 4, 0x7FFFFFFF};
/// The layout with addresses of 8 bytes.
inline constexpr StorageLayout kStorageLayout64{u"lumstg64", 8, std::numeric_limits<std::uint64_t>::max()};

static_assert(kStorageLayout32.headerSize() == 16 && kStorageLayout32.blockHeaderSize() == 31);
static_assert(kStorageLayout64.headerSize() == 24 && kStorageLayout64.blockHeaderSize() == 55);

} // namespace core
