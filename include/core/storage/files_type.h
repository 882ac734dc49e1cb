// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>
#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace core {

class FilesTable;

/// Compares two names in the order of the table: by the code units of their full case foldings, then by their
/// own code units. Returns -1, 0 or 1. Names that differ only in case are different names, side by side.
[[nodiscard]] CORE_API int compare_file_names(wstring_view a, wstring_view b) noexcept;

/// What the table says of one inner file.
struct StorageFileEntry {
    std::uint64_t attributes; ///< Address of the first block of its attributes, null when it has none.
    std::uint64_t data;       ///< Address of the first block of its content, null when the file is empty.
    /// Whether both addresses are equal.
    friend bool operator==(const StorageFileEntry&, const StorageFileEntry&) = default;
};

/// The table of inner files: their names, in order, and where their chains begin. It knows no file: its
/// content is read as a chain (ChainInFile), and a container writes it. A value type; one that was moved from
/// can only be assigned to. Threads: one at a time, also for finding.
class CORE_API StorageFilesType {
  public:
    /// Code units of the longest name.
    static constexpr std::size_t kLongestName = 0xFFFF;

    /// Makes an empty table. `layout` is borrowed for as long as the object lives; the two layouts live for
    /// ever.
    explicit StorageFilesType(const StorageLayout& layout = kStorageLayout32);
    /// Makes a table of the same files.
    StorageFilesType(const StorageFilesType& other);
    /// Takes the files of `other`.
    StorageFilesType(StorageFilesType&& other) noexcept;
    /// Holds the files of `other` from now on.
    StorageFilesType& operator=(const StorageFilesType& other);
    /// Takes the files of `other`.
    StorageFilesType& operator=(StorageFilesType&& other) noexcept;
    ~StorageFilesType();

    // modify

    /// Takes over a table's content. Returns false, with the object unchanged, when the content is malformed:
    /// it is cut off, an address lies outside the container, a name stands there twice, or the names are not
    /// in order. With `sorted` names that are not in order are put in order instead.
    [[nodiscard]] bool decode(std::span<const std::byte> content, bool sorted);
    /// Adds a file or replaces its entry. The addresses are stored as they are. Throws StorageException when
    /// the name is longer than kLongestName.
    void set(wstring_view name, const StorageFileEntry& entry);
    /// Removes a file; returns whether there was one.
    bool remove(wstring_view name);
    /// Sets the address behind which nothing of the container is in use.
    void setEnd(std::uint64_t end) noexcept;

    // inspect

    /// Returns the address behind which nothing of the container is in use.
    [[nodiscard]] std::uint64_t end() const noexcept;
    /// Returns the entry of a file, or nothing when the table has no such name.
    [[nodiscard]] std::optional<StorageFileEntry> find(wstring_view name) const;
    /// Calls `visit` for every file, in order. The name is borrowed for that call. What `visit` throws ends
    /// the walk; it must not change the table.
    void forEach(const std::function<void(wstring_view name, const StorageFileEntry& entry)>& visit) const;
    /// Returns the table's content, from which decode() makes an equal table. An empty table has no content.
    [[nodiscard]] std::vector<std::byte> encode() const;

  private:
    std::unique_ptr<FilesTable> table_;
};

/// The table of inner files in the 64-bit layout.
class CORE_API StorageFilesType64 : public StorageFilesType {
  public:
    /// Makes an empty table.
    StorageFilesType64() : StorageFilesType(kStorageLayout64) {}
};

} // namespace core
