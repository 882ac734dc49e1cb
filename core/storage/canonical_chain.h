// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace core {

class BlockReader;

/// What a chain holds and how it is written.
struct CanonicalChain {
    std::uint64_t size;
    std::uint64_t sum; ///< the checksum of the content
    bool isTogether;   ///< the blocks lie side by side, in order
    bool isCanonical;  ///< every byte of the blocks is what the library writes
};

/// Reads a whole chain. Throws ChainInFileExc when it is damaged so far that its content cannot be read.
[[nodiscard]] CanonicalChain read_canonical(BlockReader& reader, std::uint64_t address);

} // namespace core
