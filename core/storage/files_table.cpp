// SPDX-License-Identifier: Apache-2.0
#include "core/storage/files_table.h"

#include "core/storage/little_endian.h"
#include "core/strings/folding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>
#include <string_view>

namespace core {
namespace {

// Tells this table layout from any other, in a number that stays the same through all commits.
constexpr std::string_view kMark = "table of inner files, layout 1\r\n";

void copy_units(wchar* to, const std::byte* from, std::size_t count) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        if (count != 0)
            std::memcpy(to, from, 2 * count);
    } else {
        for (std::size_t i = 0; i < count; ++i)
            to[i] = static_cast<wchar>(load_number(from + 2 * i, 2));
    }
}

void copy_units(std::byte* to, wstring_view from) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        if (!from.empty())
            std::memcpy(to, from.data(), 2 * from.size());
    } else {
        for (std::size_t i = 0; i < from.size(); ++i)
            store_number(to + 2 * i, from[i], 2);
    }
}

} // namespace

int compare_file_names(wstring_view a, wstring_view b) noexcept {
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t i = 0;
    for (; i + 4 <= common; i += 4) {
        if (std::memcmp(a.data() + i, b.data() + i, 4 * sizeof(wchar)) != 0)
            break;
    }
    while (i < common && a[i] == b[i])
        ++i;
    // A folding never reaches back over its letter, but a letter may have begun with an equal unit.
    const std::size_t start = i > 0 && (a[i - 1] & 0xFC00) == 0xD800 ? i - 1 : i;
    if (const int order = compare_foldings(a.substr(start), b.substr(start)); order != 0)
        return order < 0 ? -1 : 1;
    const int exact = a.substr(i).compare(b.substr(i));
    return exact < 0 ? -1 : exact > 0 ? 1 : 0;
}

FilesTable::FilesTable(const StorageLayout& layout) noexcept : layout_(&layout), end_(layout.emptyLength()) {}

std::span<const std::byte> FilesTable::preamble() noexcept {
    static const auto bytes = [] {
        std::array<std::byte, kStorageBlockSize> all{};
        std::memcpy(all.data(), kMark.data(), kMark.size());
        return all;
    }();
    return bytes;
}

bool FilesTable::decode(std::span<const std::byte> content, bool sorted) {
    FilesTable table(*layout_);
    if (!content.empty()) {
        const std::size_t width = layout_->width;
        const std::size_t fixed = kStorageBlockSize + 2 * width;
        if (content.size() < fixed || std::memcmp(content.data(), preamble().data(), preamble().size()) != 0)
            return false;
        const std::uint64_t count = load_number(content.data() + kStorageBlockSize, width);
        table.end_ = load_number(content.data() + kStorageBlockSize + width, width);
        const std::size_t rowsLeft = (content.size() - fixed) / (3 * width);
        if (count > rowsLeft || table.end_ < layout_->emptyLength() || table.end_ > layout_->limit())
            return false;
        const std::byte* from = content.data() + fixed;
        const auto rows = static_cast<std::size_t>(count);
        const std::size_t nameBytes = content.size() - fixed - rows * 3 * width;
        table.rows_.resize(rows);
        std::uint64_t before = 0;
        bool whole = nameBytes % 2 == 0;
        for (Row& row : table.rows_) {
            row = {{load_number(from, width), load_number(from + width, width)},
                   load_number(from + 2 * width, width)};
            from += 3 * width;
            whole = whole && row.nameEnd >= before &&
                    row.nameEnd - before <= StorageFilesType::kLongestName &&
                    table.isInside(row.entry.attributes) && table.isInside(row.entry.data);
            before = row.nameEnd;
        }
        if (!whole || before != nameBytes / 2)
            return false;
        table.names_.resize(nameBytes / 2);
        copy_units(table.names_.data(), from, table.names_.size());
        if (!table.isSorted() && (!sorted || !table.sort()))
            return false;
    }
    *this = std::move(table);
    return true;
}

bool FilesTable::isSorted() const noexcept {
    for (std::size_t row = 1; row < rows_.size(); ++row) {
        if (compare_file_names(nameOf(row - 1), nameOf(row)) >= 0)
            return false;
    }
    return true;
}

bool FilesTable::sort() {
    std::vector<std::size_t> order(rows_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return compare_file_names(nameOf(a), nameOf(b)) < 0; });
    FilesTable sorted(*layout_);
    sorted.rows_.reserve(rows_.size());
    sorted.names_.reserve(names_.size());
    for (const std::size_t row : order) {
        sorted.names_.append(nameOf(row));
        sorted.rows_.push_back({rows_[row].entry, sorted.names_.size()});
    }
    rows_ = std::move(sorted.rows_);
    names_ = std::move(sorted.names_);
    return isSorted();
}

bool FilesTable::isWhole() const noexcept {
    return std::all_of(rows_.begin(), rows_.end(), [&](const Row& row) {
        return isInside(row.entry.attributes) && isInside(row.entry.data);
    });
}

std::optional<StorageFileEntry> FilesTable::find(wstring_view name) const {
    if (!changes_.empty()) {
        if (const auto change = changes_.find(name); change != changes_.end())
            return change->second.change;
    }
    const auto row = rowOf(name);
    return row ? std::optional(rows_[*row].entry) : std::nullopt;
}

std::optional<std::size_t> FilesTable::rowOf(wstring_view name) const {
    if (index_.empty() && ++searches_ > rows_.size() / 16)
        makeIndex();
    if (!index_.empty()) {
        const auto row =
            index_.find(table_hash(name), [&](HashIndex::Position row) { return nameOf(row) == name; });
        return row != HashIndex::kNone ? std::optional<std::size_t>(row) : std::nullopt;
    }
    std::size_t low = 0;
    std::size_t high = rows_.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const int order = compare_file_names(nameOf(middle), name);
        if (order == 0)
            return middle;
        (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
    }
    return std::nullopt;
}

void FilesTable::makeIndex() const {
    try {
        index_.reserve(rows_.size());
    } catch (const std::bad_alloc&) { // the sorted rows can be searched without
        searches_ = 0;
        return;
    }
    for (std::size_t row = 0; row < rows_.size(); ++row)
        index_.add(table_hash(nameOf(row)), static_cast<HashIndex::Position>(row));
}

FilesTable::SortedChanges FilesTable::sortedChanges() const {
    SortedChanges sorted;
    for (const auto& change : changes_)
        (change.second.row == kNoRow ? sorted.added : sorted.known).push_back(&change);
    std::sort(sorted.known.begin(), sorted.known.end(),
              [](const auto* a, const auto* b) { return a->second.row < b->second.row; });
    std::sort(sorted.added.begin(), sorted.added.end(),
              [](const auto* a, const auto* b) { return compare_file_names(a->first, b->first) < 0; });
    return sorted;
}

FilesTable::Change& FilesTable::edit(wstring_view name) {
    if (const auto change = changes_.find(name); change != changes_.end())
        return change->second.change;
    const auto row = rowOf(name);
    const Edit same{row ? Change(rows_[*row].entry) : std::nullopt, row.value_or(kNoRow)};
    return changes_.emplace(wstring(name), same).first->second.change;
}

bool FilesTable::isChanged(wstring_view name) const noexcept {
    const auto found = changes_.find(name);
    if (found == changes_.end())
        return false;
    const auto& [change, row] = found->second;
    return change != (row == kNoRow ? Change() : Change(rows_[row].entry));
}

void FilesTable::revert() noexcept {
    changes_.clear();
    changed_ = false;
}

FilesTable FilesTable::merged() const {
    FilesTable result(*layout_);
    result.end_ = end_;
    result.rows_.reserve(rows_.size() + changes_.size());
    result.names_.reserve(names_.size() + 16 * changes_.size());
    forEach([&](wstring_view name, const StorageFileEntry& entry) {
        result.names_.append(name);
        result.rows_.push_back({entry, result.names_.size()});
    });
    return result;
}

std::uint64_t FilesTable::encodedSize() const noexcept {
    const std::uint64_t numbers = 2 + 3 * std::uint64_t{rows_.size()};
    return rows_.empty() ? 0
                         : kStorageBlockSize + layout_->width * numbers + 2 * std::uint64_t{names_.size()};
}

std::vector<std::byte> FilesTable::encode() const {
    std::vector<std::byte> content(static_cast<std::size_t>(encodedSize()));
    if (content.empty())
        return content;
    const std::size_t width = layout_->width;
    std::byte* to = std::copy(preamble().begin(), preamble().end(), content.data());
    const auto put = [&](std::uint64_t number) {
        store_number(to, number, width);
        to += width;
    };
    put(rows_.size());
    put(end_);
    for (const Row& row : rows_) {
        put(row.entry.attributes);
        put(row.entry.data);
        put(row.nameEnd);
    }
    copy_units(to, names_);
    return content;
}

} // namespace core
