// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/hash_index.h"
#include "core/strings/table_hash.h"

#include <core/runtime/types.h>
#include <core/storage/files_type.h>
#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace core {

/// The table of inner files: sorted by name, as it was read, with the changes that are not committed yet laid
/// over it. Knows no file; the container reads and writes its content.
class FilesTable {
  public:
    explicit FilesTable(const StorageLayout& layout) noexcept;

    // modify

    /// Takes over the table's content. False, with the table unchanged, when it is malformed: cut off, an
    /// address outside the container, a name twice, or names that are not in order, unless `sorted` lets them
    /// be put in order.
    [[nodiscard]] bool decode(std::span<const std::byte> content, bool sorted);
    /// What a name stands for, now or once the changes are committed; nothing when there is no such file.
    using Change = std::optional<StorageFileEntry>;
    /// The change of this name, as it is now. To assign() another to it cannot fail.
    [[nodiscard]] Change& edit(wstring_view name);
    void assign(Change& known, const Change& change) noexcept {
        known = change;
        changed_ = true;
    }
    void set(wstring_view name, const StorageFileEntry& entry) { assign(edit(name), entry); }
    /// Forgets the changes.
    void revert() noexcept;

    // inspect

    /// The container's end as the table knows it: nothing that is in use lies beyond.
    [[nodiscard]] std::uint64_t end() const noexcept { return end_; }
    void setEnd(std::uint64_t end) noexcept { end_ = end; }
    /// Whether decode() would take the table, without its changes, for addresses within end().
    [[nodiscard]] bool isWhole() const noexcept;
    [[nodiscard]] bool hasChanges() const noexcept { return changed_; }
    /// Whether the changes make a name stand for something else.
    [[nodiscard]] bool isChanged(wstring_view name) const noexcept;
    [[nodiscard]] std::optional<StorageFileEntry> find(wstring_view name) const;
    /// Every file, in order, as `visit(wstring_view name, const StorageFileEntry&)`.
    template <class Visit>
    void forEach(Visit visit) const;
    /// The table with the changes as part of it.
    [[nodiscard]] FilesTable merged() const;
    /// The content of a table without changes, and its size.
    [[nodiscard]] std::vector<std::byte> encode() const;
    [[nodiscard]] std::uint64_t encodedSize() const noexcept;

    /// The first bytes of the content, which never change: they lie in the table's first block.
    [[nodiscard]] static std::span<const std::byte> preamble() noexcept;

  private:
    struct Row {
        StorageFileEntry entry;
        std::uint64_t nameEnd; // in names_
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(wstring_view name) const noexcept {
            return static_cast<std::size_t>(table_hash(name));
        }
    };
    struct Edit {
        Change change;
        std::size_t row; // that it concerns, kNoRow for a name that the table does not have
    };
    static constexpr std::size_t kNoRow = std::numeric_limits<std::size_t>::max();
    using Changes = std::unordered_map<wstring, Edit, Hash, std::equal_to<>>;
    using ChangeList = std::vector<const Changes::value_type*>;
    struct SortedChanges {
        ChangeList known; // by row
        ChangeList added; // by name
    };

    [[nodiscard]] wstring_view nameOf(std::size_t row) const noexcept {
        const std::size_t begin = row == 0 ? 0 : static_cast<std::size_t>(rows_[row - 1].nameEnd);
        return wstring_view(names_).substr(begin, static_cast<std::size_t>(rows_[row].nameEnd) - begin);
    }
    [[nodiscard]] bool isInside(std::uint64_t address) const noexcept {
        return address == layout_->null || (address >= layout_->emptyLength() && address < end_);
    }
    [[nodiscard]] bool isSorted() const noexcept;
    /// Puts the rows in order; false when a name is there twice.
    [[nodiscard]] bool sort();
    [[nodiscard]] std::optional<std::size_t> rowOf(wstring_view name) const;
    void makeIndex() const;
    [[nodiscard]] SortedChanges sortedChanges() const;

    const StorageLayout* layout_;
    std::uint64_t end_;
    std::vector<Row> rows_;
    wstring names_; // of all rows, one behind the other
    Changes changes_;
    bool changed_ = false;
    // The rows by their names; made once so many names were asked for that it pays.
    mutable HashIndex index_;
    mutable std::size_t searches_ = 0;
};

template <class Visit>
void FilesTable::forEach(Visit visit) const {
    const SortedChanges changes = sortedChanges();
    auto known = changes.known.begin();
    auto added = changes.added.begin();
    const auto visitChange = [&](const Changes::value_type& change) {
        if (change.second.change)
            visit(wstring_view(change.first), *change.second.change);
    };
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        const wstring_view name = nameOf(row);
        for (; added != changes.added.end() && compare_file_names((*added)->first, name) < 0; ++added)
            visitChange(**added);
        if (known != changes.known.end() && (*known)->second.row == row)
            visitChange(**known++);
        else
            visit(name, rows_[row].entry);
    }
    for (; added != changes.added.end(); ++added)
        visitChange(**added);
}

} // namespace core
