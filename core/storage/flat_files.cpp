// SPDX-License-Identifier: Apache-2.0
#include "core/storage/flat_files.h"

#include "core/storage/container_head.h"
#include "core/storage/little_endian.h"
#include "core/strings/table_hash.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <numeric>
#include <utility>

namespace core {
namespace {

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

std::span<const std::byte> FlatFiles::preamble() noexcept {
    static const auto bytes = [] {
        std::array<std::byte, kStorageBlockSize> all{};
        std::memcpy(all.data(), ContainerHead::kFlatMark.data(), ContainerHead::kFlatMark.size());
        return all;
    }();
    return bytes;
}

std::optional<FlatFiles::Decoded> FlatFiles::decode(std::span<const std::byte> content, bool sorted,
                                                    const StorageLayout& layout) {
    Decoded table{FlatFiles(layout), layout.emptyLength()};
    FlatFiles& files = table.files;
    if (content.empty())
        return table;
    const std::size_t width = layout.width;
    const std::size_t fixed = kStorageBlockSize + 2 * width;
    if (content.size() < fixed || std::memcmp(content.data(), preamble().data(), preamble().size()) != 0)
        return std::nullopt;
    const std::uint64_t count = load_number(content.data() + kStorageBlockSize, width);
    table.end = load_number(content.data() + kStorageBlockSize + width, width);
    const std::size_t rowsLeft = (content.size() - fixed) / (3 * width);
    if (count > rowsLeft || table.end < layout.emptyLength() || table.end > layout.limit())
        return std::nullopt;
    const std::byte* from = content.data() + fixed;
    const auto rows = static_cast<std::size_t>(count);
    const std::size_t nameBytes = content.size() - fixed - rows * 3 * width;
    files.rows_.resize(rows);
    std::uint64_t before = 0;
    bool whole = nameBytes % 2 == 0;
    for (Row& row : files.rows_) {
        row = {{load_number(from, width), load_number(from + width, width)},
               load_number(from + 2 * width, width)};
        from += 3 * width;
        whole = whole && row.nameEnd >= before && row.nameEnd - before <= StorageFilesType::kLongestName;
        before = row.nameEnd;
    }
    if (!whole || before != nameBytes / 2 || !files.isWhole(table.end))
        return std::nullopt;
    files.names_.resize(nameBytes / 2);
    copy_units(files.names_.data(), from, files.names_.size());
    if (!files.isSorted() && (!sorted || !files.sort()))
        return std::nullopt;
    return table;
}

bool FlatFiles::isWhole(std::uint64_t end) const noexcept {
    const auto isInside = [&](std::uint64_t address) {
        return address == layout_->null || (address >= layout_->emptyLength() && address < end);
    };
    return std::all_of(rows_.begin(), rows_.end(), [&](const Row& row) {
        return isInside(row.entry.attributes) && isInside(row.entry.data);
    });
}

bool FlatFiles::isSorted() const noexcept {
    for (std::size_t row = 1; row < rows_.size(); ++row) {
        if (compare_file_names(nameOf(row - 1), nameOf(row)) >= 0)
            return false;
    }
    return true;
}

bool FlatFiles::sort() {
    std::vector<std::size_t> order(rows_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return compare_file_names(nameOf(a), nameOf(b)) < 0; });
    FlatFiles sorted(*layout_);
    sorted.reserve(rows_.size(), names_.size());
    for (const std::size_t row : order)
        sorted.append(nameOf(row), rows_[row].entry);
    rows_ = std::move(sorted.rows_);
    names_ = std::move(sorted.names_);
    return isSorted();
}

std::optional<FileEntry> FlatFiles::find(wstring_view name) const {
    const auto row = rowOf(name);
    return row ? std::optional(FileEntry{rows_[*row].entry}) : std::nullopt;
}

void FlatFiles::forEach(const Visit& visit, const DamagedNode&) const {
    for (std::size_t row = 0; row < rows_.size(); ++row)
        visit(nameOf(row), FileEntry{rows_[row].entry});
}

std::optional<std::size_t> FlatFiles::rowOf(wstring_view name) const {
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

void FlatFiles::makeIndex() const {
    try {
        index_.reserve(rows_.size());
    } catch (const std::bad_alloc&) { // the sorted rows can be searched without
        searches_ = 0;
        return;
    }
    for (std::size_t row = 0; row < rows_.size(); ++row)
        index_.add(table_hash(nameOf(row)), static_cast<HashIndex::Position>(row));
}

void FlatFiles::reserve(std::size_t rows, std::size_t units) {
    rows_.reserve(rows);
    names_.reserve(units);
}

void FlatFiles::append(wstring_view name, const StorageFileEntry& entry) {
    names_.append(name);
    rows_.push_back({entry, names_.size()});
}

std::uint64_t FlatFiles::encodedSize() const noexcept {
    const std::uint64_t numbers = 2 + 3 * std::uint64_t{rows_.size()};
    return rows_.empty() ? 0
                         : kStorageBlockSize + layout_->width * numbers + 2 * std::uint64_t{names_.size()};
}

std::vector<std::byte> FlatFiles::encode(std::uint64_t end) const {
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
    put(end);
    for (const Row& row : rows_) {
        put(row.entry.attributes);
        put(row.entry.data);
        put(row.nameEnd);
    }
    copy_units(to, names_);
    return content;
}

} // namespace core
