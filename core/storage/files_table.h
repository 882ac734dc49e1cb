// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/committed_files.h"
#include "core/storage/flat_files.h"
#include "core/strings/table_hash.h"

#include <core/runtime/types.h>
#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace core {

/// The table of inner files: what is committed, in either layout, with the changes that are not committed yet
/// laid over it.
class FilesTable {
  public:
    explicit FilesTable(const StorageLayout& layout);
    FilesTable(const StorageLayout& layout, std::unique_ptr<CommittedFiles> committed,
               std::uint64_t end) noexcept
        : layout_(&layout), committed_(std::move(committed)), end_(end) {}
    FilesTable(const FilesTable& other);
    FilesTable(FilesTable&& other) noexcept = default;
    FilesTable& operator=(const FilesTable& other) = delete;
    FilesTable& operator=(FilesTable&& other) noexcept = default;

    // modify

    /// Takes over the content of a table of table layout 1. False, with the table unchanged, when it is
    /// malformed; see FlatFiles::decode().
    [[nodiscard]] bool decode(std::span<const std::byte> content, bool sorted);
    /// What a name stands for, now or once the changes are committed; nothing when there is no such file.
    using Change = std::optional<FileEntry>;
    /// The change of this name, as it is now. To assign() another to it cannot fail.
    [[nodiscard]] Change& edit(wstring_view name);
    void assign(Change& known, const Change& change) noexcept {
        known = change;
        changed_ = true;
    }
    void set(wstring_view name, const FileEntry& entry) { assign(edit(name), entry); }
    /// Has the table written again, though no file changes.
    void touch() noexcept { changed_ = true; }
    /// Forgets the changes.
    void revert() noexcept;

    // inspect

    /// The container's end as the table knows it: nothing that is in use lies beyond.
    [[nodiscard]] std::uint64_t end() const noexcept { return end_; }
    void setEnd(std::uint64_t end) noexcept { end_ = end; }
    [[nodiscard]] bool hasChanges() const noexcept { return changed_; }
    /// Whether the changes make a name stand for something else.
    [[nodiscard]] bool isChanged(wstring_view name) const noexcept;
    [[nodiscard]] std::optional<FileEntry> find(wstring_view name) const;
    /// Every file, in order, as `visit(wstring_view name, const FileEntry&)`. Without `damaged` a node that
    /// is damaged is thrown.
    void forEach(const CommittedFiles::Visit& visit, const DamagedNode& damaged = {}) const;
    /// What changes, by name. Valid until the next change.
    struct Changed {
        wstring_view name;
        const Change* before;
        const Change* after;
    };
    [[nodiscard]] std::vector<Changed> changes() const;
    /// The files once the changes are committed.
    [[nodiscard]] std::uint64_t count() const;
    [[nodiscard]] const CommittedFiles& committed() const noexcept { return *committed_; }
    /// All rows with the changes as part of them, in the form of table layout 1.
    [[nodiscard]] std::unique_ptr<FlatFiles> flattened() const;

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(wstring_view name) const noexcept {
            return static_cast<std::size_t>(table_hash(name));
        }
    };
    struct Edit {
        Change before; // what is committed
        Change after;
    };
    using Edits = std::unordered_map<wstring, Edit, Hash, std::equal_to<>>;

    const StorageLayout* layout_;
    std::unique_ptr<CommittedFiles> committed_;
    std::uint64_t end_;
    Edits edits_;
    bool changed_ = false;
};

} // namespace core
