// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_chain.h"
#include "core/storage/block_reader.h"
#include "core/storage/container_head.h"
#include "core/storage/files_table.h"
#include "core/storage/known_chains.h"

#include <core/storage/storage_check.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace core {

/// The list of free space, as far as it can be read and its ranges are in order: a damaged address leads to
/// anything, so it is read in pieces and not believed beforehand.
struct FreeChain {
    BlockChain chain;
    std::optional<std::uint64_t> damage; ///< where it shows, none in a sound list
};
/// Reads the list at `address`; shows each range before `end` that it says is free.
[[nodiscard]] FreeChain
read_free_chain(BlockReader& reader, std::uint64_t address, std::uint64_t end,
                const std::function<void(std::uint64_t begin, std::uint64_t end)>& visit);

/// What the trees of table layout 2 take up, and what the one of them says of free space: addresses and
/// lengths, in order.
struct TreeSpace {
    BlockRuns fileNodes;
    BlockRuns freeNodes;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> free;
};

/// Walks every chain of a container, whatever is wrong with them, and shows them one by one. It keeps nothing
/// of them unless it is told to, so that memory does not grow with the container.
class ChainSurvey {
  public:
    /// A chain, as far as it can be followed. Valid while it is shown.
    struct Chain {
        StorageUse use;
        wstring_view name;                   ///< of the inner file, empty when no file has the chain
        std::uint64_t address;               ///< of the first block
        std::uint64_t size;                  ///< bytes of content, 0 when the chain does not say
        const BlockRuns& blocks;             ///< every block once
        std::optional<std::uint64_t> damage; ///< where it shows, none in a sound chain
    };
    using Visit = std::function<void(const Chain&)>;
    using VisitFree = std::function<void(std::uint64_t begin, std::uint64_t end)>;

    /// `fileLength` is where the file ends: content beyond is missing.
    ChainSurvey(BlockReader& reader, std::uint64_t fileLength, const FilesTable& table,
                const ContainerHead& head, const BlockRuns& tableBlocks, const TreeSpace* trees);
    /// From now on contents and attributes are read and compared with what the table says of them.
    void compareContents() noexcept { compares_ = true; }
    /// From now on nothing ends the walk: places that cannot be read are damage, and `damaged` is told of
    /// nodes of the table. Who is about to write where no chain lies must not go on like that.
    void goOn(DamagedNode damaged) { damagedNode_ = std::move(damaged); }

    /// From now on chains that are known are not read, which says nothing to a walk that compares. Those of
    /// which more becomes known are added when it `learns`. `known` outlives the object.
    void use(KnownChains& known, bool learns) noexcept {
        known_ = &known;
        learns_ = learns;
    }

    /// Shows the table's chain (without its first block), the free ranges that are listed, as far as they are
    /// in order, the free chain, then the chains of all files. False when it gave up, because the chains are
    /// much longer than the container: they share blocks then, and to walk these for ever more chains would
    /// take time without bound.
    [[nodiscard]] bool walk(const Visit& visit, const VisitFree& visitFree);
    /// Inner files in the table.
    [[nodiscard]] std::uint64_t files() const noexcept { return files_; }

  private:
    void requireBytes(const BlockChain& chain) const;
    void showSpace(const Visit& visit, const VisitFree& visitFree);
    void follow(StorageUse use, wstring_view name, const FileEntry& entry);
    template <class Read>
    void attempt(std::uint64_t address, std::optional<std::uint64_t>& damage, Read read) const;
    void look(StorageUse use, wstring_view name, const FileEntry& entry, BlockChain& chain);
    void show(StorageUse use, wstring_view name, std::uint64_t address, const BlockChain& chain,
              std::optional<std::uint64_t> damage);
    void learn(StorageUse use, std::uint64_t address, const BlockChain& chain,
               std::optional<std::uint64_t> damage);
    [[nodiscard]] bool isEnough() const noexcept { return length_ / 4 > reader_.end(); }

    BlockReader& reader_;
    const StorageLayout& layout_;
    const std::uint64_t fileLength_;
    const FilesTable& table_;
    const ContainerHead& head_;
    const BlockRuns& tableBlocks_;
    const TreeSpace* trees_;
    bool compares_ = false;
    DamagedNode damagedNode_; // empty: what cannot be read is thrown
    KnownChains* known_ = nullptr;
    bool learns_ = false;
    const Visit* visit_ = nullptr;
    std::uint64_t length_ = 0; // of all blocks shown
    std::uint64_t files_ = 0;
};

} // namespace core
