// SPDX-License-Identifier: Apache-2.0
#include "core/storage/files_table.h"
#include "core/storage/storage_error.h"

#include <core/storage/errors.h>
#include <core/storage/files_type.h>

#include <utility>

namespace core {

// A program may take it by reference: a library of Windows exports constants that are defined.
constexpr std::size_t StorageFilesType::kLongestName;

StorageFilesType::StorageFilesType(const StorageLayout& layout)
    : table_(std::make_unique<FilesTable>(layout)) {}
StorageFilesType::StorageFilesType(const StorageFilesType& other)
    : table_(std::make_unique<FilesTable>(*other.table_)) {}
StorageFilesType::StorageFilesType(StorageFilesType&&) noexcept = default;
StorageFilesType& StorageFilesType::operator=(const StorageFilesType& other) {
    return *this = StorageFilesType(other);
}
StorageFilesType& StorageFilesType::operator=(StorageFilesType&&) noexcept = default;
StorageFilesType::~StorageFilesType() = default;

bool StorageFilesType::decode(std::span<const std::byte> content, bool sorted) {
    return table_->decode(content, sorted);
}

void StorageFilesType::set(wstring_view name, const StorageFileEntry& entry) {
    if (name.size() > kLongestName)
        throw_storage_error(messages::kStorageLongName, wstring(name));
    table_->set(name, FileEntry{entry});
}

bool StorageFilesType::remove(wstring_view name) {
    const bool found = table_->find(name).has_value();
    if (found)
        table_->assign(table_->edit(name), std::nullopt);
    return found;
}

void StorageFilesType::setEnd(std::uint64_t end) noexcept {
    table_->setEnd(end);
}
std::uint64_t StorageFilesType::end() const noexcept {
    return table_->end();
}
std::optional<StorageFileEntry> StorageFilesType::find(wstring_view name) const {
    return table_->find(name);
}

void StorageFilesType::forEach(
    const std::function<void(wstring_view, const StorageFileEntry&)>& visit) const {
    table_->forEach(visit);
}

std::vector<std::byte> StorageFilesType::encode() const {
    return table_->flattened()->encode(table_->end());
}

} // namespace core
