// SPDX-License-Identifier: Apache-2.0
#include "core/storage/node_store.h"

#include <algorithm>
#include <cstring>

namespace core {

std::vector<std::byte> read_together(BlockReader& reader, std::uint64_t address, std::uint64_t size) {
    if (size == 0)
        return {};
    const StorageLayout& layout = reader.layout();
    const std::uint64_t step = layout.blockLength(kStorageBlockSize);
    const std::uint64_t blocks = (size + kStorageBlockSize - 1) / kStorageBlockSize;
    if (address < layout.emptyLength() || address > reader.end() || blocks > (reader.end() - address) / step)
        throw ChainInFileExc(address);
    constexpr std::uint64_t kAtOnce = 128; // blocks, so that what is read is still in the caches
    std::vector<std::byte> content(static_cast<std::size_t>(size));
    const auto raw = reader.scratch(static_cast<std::size_t>(std::min(blocks, kAtOnce) * step));
    std::byte* to = content.data();
    std::size_t left = content.size();
    for (std::uint64_t done = 0; done < blocks; done += kAtOnce) {
        const std::uint64_t count = std::min(kAtOnce, blocks - done);
        const auto part = raw.first(static_cast<std::size_t>(count * step));
        if (!reader.readAround(address + done * step, part))
            throw ChainInFileExc(address);
        for (std::uint64_t block = 0; block < count; ++block) {
            const std::size_t bytes = std::min(left, kStorageBlockSize);
            std::memcpy(to, raw.data() + block * step + layout.blockHeaderSize(), bytes);
            to += bytes;
            left -= bytes;
        }
    }
    return content;
}

} // namespace core
