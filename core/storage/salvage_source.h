// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_chain.h"
#include "core/storage/block_format.h"
#include "core/storage/block_reader.h"
#include "core/storage/container_head.h"
#include "core/storage/node_store.h"
#include "core/storage/range_set.h"
#include "core/storage/tree_rows.h"

#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/types.h>
#include <core/storage/file_info.h>
#include <core/storage/salvage.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

namespace core {

/// A file that ends where it cannot be read, so that a bad sector is damage of one place like any other. It
/// is as long as it was in the beginning.
class PatientFile : public FileImpl {
  public:
    using Interfaces = InterfaceList<IFile>;

    explicit PatientFile(IFile& file) : FileImpl(file.url()), file_(&file), length_(file.length()) {}

    /// Reads the first bytes now and not again.
    void keep(std::uint64_t count);

    std::size_t readAt(std::uint64_t position, void* buffer, std::size_t count) override;
    std::size_t writeAt(std::uint64_t position, const void* buffer, std::size_t count) override;
    std::uint64_t length() override { return length_; }
    void truncate(std::uint64_t length) override;
    void flush() override {}
    void close() override {}

  private:
    InterfacePtr<IFile> file_;
    std::uint64_t length_;
    std::vector<std::byte> kept_;
};

/// Reads what can be read of `out` from `offset` of a chain on, and returns how many bytes that are.
[[nodiscard]] std::size_t read_what_is_there(BlockChain& chain, BlockReader& reader, std::uint64_t offset,
                                             std::span<std::byte> out);

/// Finds the inner files of a container by what is left of it.
class SalvageSource {
  public:
    /// Where the content is may be unknown; `entry` has none then.
    using Visit = std::function<void(wstring_view name, const FileEntry& entry, bool isContentKnown)>;
    /// Called with the bytes looked at so far.
    using Progress = std::function<void(std::uint64_t done)>;

    SalvageSource(BlockReader& reader, std::uint64_t length, Progress progress)
        : reader_(reader), layout_(reader.layout()), length_(length), progress_(std::move(progress)),
          nodes_(reader) {}

    /// Shows every file that is found and says by what. Nothing when the file holds no part of a container.
    [[nodiscard]] std::optional<SalvageReport::Source> find(const Visit& visit);
    /// How many files there were, as far as that is known; those that were not shown have lost their names.
    [[nodiscard]] std::uint64_t expected() const noexcept { return expected_; }

  private:
    struct Found; // in the whole file

    [[nodiscard]] bool readHead(ContainerHead::Bytes& bytes);

    // The tree of table layout 2.
    [[nodiscard]] bool isWholeTree(const NodeRef& ref, std::optional<unsigned> level);
    void showTree(const NodeRef& ref, std::optional<unsigned> level, bool remembers, const Visit& visit);
    [[nodiscard]] bool findByTree(const Visit& visit);
    [[nodiscard]] bool findByNodes(Found& found, const Visit& visit);
    void findByLeaves(const Found& found, const Visit& visit);
    [[nodiscard]] bool lookForNode(std::uint64_t address, const BlockHeader& header, Found& found);
    void readFree(const ContainerHead& head);
    [[nodiscard]] bool isFree(std::uint64_t address) const { return free_.touches(address, address + 1); }

    [[nodiscard]] bool findByTable(const Visit& visit);
    [[nodiscard]] bool findByRows(std::span<const std::byte> content, const Visit& visit);
    [[nodiscard]] bool findByOldTable(const Found& found, const Visit& visit);
    [[nodiscard]] bool findByRecords(Found& found, const Visit& visit);
    void scan(Found& found);
    void look(std::uint64_t address, const BlockHeader& header, Found& found);
    [[nodiscard]] std::optional<BlockHeader> headerAt(std::uint64_t address);
    [[nodiscard]] std::uint64_t nextBlock(std::uint64_t address, std::uint64_t size);
    [[nodiscard]] std::optional<StorageFileInfo> recordAt(std::uint64_t address, std::uint64_t& end);
    [[nodiscard]] std::optional<std::vector<std::byte>> tableAt(std::uint64_t address);

    BlockReader& reader_;
    const StorageLayout& layout_;
    const std::uint64_t length_;
    Progress progress_;
    NodeStore<FileRows> nodes_;
    std::set<wstring> shown_; // by a table of which a part is missing
    RangeSet free_;           // what lies there belongs to no file; empty where that is not known
    std::uint64_t expected_ = 0;
};

} // namespace core
