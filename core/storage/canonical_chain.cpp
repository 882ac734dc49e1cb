// SPDX-License-Identifier: Apache-2.0
#include "core/storage/canonical_chain.h"

#include "core/storage/block_chain.h"
#include "core/storage/block_format.h"
#include "core/storage/block_reader.h"
#include "core/storage/checksum.h"

#include <core/runtime/threads/thread.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace core {
namespace {

constexpr std::uint64_t kAtOnce = 128; // blocks

/// A chain that is not canonical, whose content is all that counts. Throws ChainInFileExc where that is
/// missing.
CanonicalChain read_content(BlockChain& chain, BlockReader& reader) {
    Checksum sum;
    std::vector<std::byte> content;
    for (std::uint64_t done = 0; done < chain.size(); done += content.size()) {
        Thread::check();
        content.resize(static_cast<std::size_t>(std::min(kAtOnce * kStorageBlockSize, chain.size() - done)));
        chain.readAt(reader, done, content);
        sum.add(content);
    }
    return {chain.size(), sum.value(), false, false};
}

} // namespace

CanonicalChain read_canonical(BlockReader& reader, std::uint64_t address) {
    const StorageLayout& layout = reader.layout();
    BlockChain chain(layout);
    chain.open(reader, address, 0);
    chain.walk(reader);
    const auto& runs = chain.runs().runs();
    const std::uint64_t size = chain.size();
    const std::uint64_t blocks = (size + kStorageBlockSize - 1) / kStorageBlockSize;
    CanonicalChain result{size, 0, runs.size() <= 1, chain.runs().count() == blocks};
    for (const BlockRun& run : runs)
        result.isCanonical = result.isCanonical && run.size == kStorageBlockSize;
    if (!result.isCanonical)
        return read_content(chain, reader);
    Checksum sum;
    std::vector<std::byte> content;
    const std::uint64_t step = layout.blockLength(kStorageBlockSize);
    std::vector<std::byte> found;
    std::vector<std::byte> expected;
    std::uint64_t chainSize = size;
    std::uint64_t left = size;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        for (BlockRange rest{runs[i].address, runs[i].count}; rest.count != 0;) {
            Thread::check();
            const BlockRange piece{rest.address, std::min(kAtOnce, rest.count)};
            rest = {rest.address + piece.count * step, rest.count - piece.count};
            const std::uint64_t next = rest.count != 0       ? rest.address
                                       : i + 1 < runs.size() ? runs[i + 1].address
                                                             : layout.null;
            found.resize(static_cast<std::size_t>(piece.count * step));
            expected.resize(found.size());
            content.resize(static_cast<std::size_t>(std::min(left, piece.count * kStorageBlockSize)));
            if (!reader.readAround(piece.address, found)) // what fills the last block up may be missing
                return read_content(chain, reader);
            for (std::size_t at = 0, block = 0; at < content.size(); at += kStorageBlockSize, ++block)
                std::memcpy(content.data() + at, found.data() + block * step + layout.blockHeaderSize(),
                            std::min(kStorageBlockSize, content.size() - at));
            sum.add(content);
            encode_blocks(expected.data(), layout, piece, content, std::exchange(chainSize, 0), next);
            result.isCanonical = result.isCanonical && found == expected;
            left -= content.size();
        }
    }
    result.sum = sum.value();
    return result;
}

} // namespace core
