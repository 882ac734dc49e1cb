// SPDX-License-Identifier: Apache-2.0
#include "core/storage/engine.h"
#include "core/storage/storage_error.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <utility>

namespace core {

/// In two commits, each of them safe like any other: all files are written behind everything that is there,
/// then, side by side, to the start, which nothing uses any more.
void StorageEngine::compact() {
    const std::lock_guard lock(mutex_);
    if (transaction_ || turns_ != 0)
        throw_storage_error(messages::kStorageTransaction, url_);
    const Turn turn(*this);
    if (!spaceVerified_)
        verifySpace();
    if (!spaceVerified_)
        throwBadFormat();
    if (space_.free().empty() && head_.freeChain == layout_.null && space_.end() == table_.end())
        return;
    checked([&] {
        appending_ = true;
        try {
            moveAll();
            commitChanges();
        } catch (...) {
            appending_ = false;
            throw;
        }
        appending_ = false;
        moveAll();
        commitChanges();
    });
}

void StorageEngine::moveAll() {
    std::vector<std::pair<wstring, StorageFileEntry>> files;
    table_.forEach(
        [&](wstring_view name, const StorageFileEntry& entry) { files.emplace_back(name, entry); });
    for (const auto& [name, entry] : files) {
        table_.set(name, {moveChain(entry.attributes), moveChain(entry.data)});
        BlockRuns released(layout_.blockHeaderSize());
        addBlocks(entry.attributes, released);
        addBlocks(entry.data, released);
        release(released);
    }
}

/// Copies a chain to other blocks, as much at once as the queue holds.
std::uint64_t StorageEngine::moveChain(std::uint64_t address) {
    BlockChain from = chain(address, 0);
    if (from.size() == 0)
        return layout_.null;
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    const auto ranges = allocate((from.size() + kStorageBlockSize - 1) / kStorageBlockSize);
    std::vector<std::byte> bytes;
    std::uint64_t offset = 0;
    std::uint64_t chainSize = from.size();
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        for (BlockRange rest = ranges[i]; rest.count != 0;) {
            const BlockRange piece{rest.address, std::min<std::uint64_t>(rest.count, 256)};
            rest = {rest.address + piece.count * step, rest.count - piece.count};
            const std::uint64_t next = rest.count != 0         ? rest.address
                                       : i + 1 < ranges.size() ? ranges[i + 1].address
                                                               : layout_.null;
            const std::uint64_t part = std::min(piece.count * kStorageBlockSize, from.size() - offset);
            bytes.resize(static_cast<std::size_t>(part));
            from.readAt(reader_, offset, bytes);
            write(std::span(&piece, 1), bytes, std::exchange(chainSize, 0), next);
            offset += part;
        }
    }
    return ranges.front().address;
}

} // namespace core
