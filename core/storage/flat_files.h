// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/committed_files.h"
#include "core/strings/hash_index.h"

#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// The committed table in table layout 1: all rows in memory, sorted by name, as they were read.
class FlatFiles : public CommittedFiles {
  public:
    explicit FlatFiles(const StorageLayout& layout) noexcept : layout_(&layout) {}

    /// The table's content. Nothing when it is malformed: cut off, an address outside the container, a name
    /// twice, or names that are not in order, unless `sorted` lets them be put in order.
    struct Decoded;
    [[nodiscard]] static std::optional<Decoded> decode(std::span<const std::byte> content, bool sorted,
                                                       const StorageLayout& layout);
    [[nodiscard]] std::vector<std::byte> encode(std::uint64_t end) const;
    [[nodiscard]] std::uint64_t encodedSize() const noexcept;
    /// Whether decode() would take the rows, for addresses before `end`.
    [[nodiscard]] bool isWhole(std::uint64_t end) const noexcept;
    void reserve(std::size_t rows, std::size_t units);
    /// Appends a row whose name is greater than all others.
    void append(wstring_view name, const StorageFileEntry& entry);

    [[nodiscard]] std::unique_ptr<CommittedFiles> clone() const override {
        return std::make_unique<FlatFiles>(*this);
    }
    [[nodiscard]] std::uint64_t count() const noexcept override { return rows_.size(); }
    [[nodiscard]] std::size_t nameUnits() const noexcept { return names_.size(); }
    [[nodiscard]] std::optional<FileEntry> find(wstring_view name) const override;
    void forEach(const Visit& visit, const DamagedNode& damaged) const override;

    /// The first bytes of the content, which never change: they lie in the table's first block.
    [[nodiscard]] static std::span<const std::byte> preamble() noexcept;

  private:
    struct Row {
        StorageFileEntry entry;
        std::uint64_t nameEnd; // in names_
    };

    [[nodiscard]] wstring_view nameOf(std::size_t row) const noexcept {
        const std::size_t begin = row == 0 ? 0 : static_cast<std::size_t>(rows_[row - 1].nameEnd);
        return wstring_view(names_).substr(begin, static_cast<std::size_t>(rows_[row].nameEnd) - begin);
    }
    [[nodiscard]] bool isSorted() const noexcept;
    /// Puts the rows in order; false when a name is there twice.
    [[nodiscard]] bool sort();
    [[nodiscard]] std::optional<std::size_t> rowOf(wstring_view name) const;
    void makeIndex() const;

    const StorageLayout* layout_;
    std::vector<Row> rows_;
    wstring names_; // of all rows, one behind the other
    // The rows by their names; made once so many names were asked for that it pays.
    mutable HashIndex index_;
    mutable std::size_t searches_ = 0;
};

struct FlatFiles::Decoded {
    FlatFiles files;
    std::uint64_t end; ///< of the container: nothing that is in use lies beyond
};

} // namespace core
