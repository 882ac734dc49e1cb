// SPDX-License-Identifier: Apache-2.0
#include "core/storage/little_endian.h"

#include <core/storage/file_info.h>

namespace core {
namespace {

constexpr std::size_t kModified = 8;
constexpr std::size_t kAttribute = 16;
constexpr std::size_t kName = 20;

} // namespace

// A program may take it by reference: a library of Windows exports constants that are defined.
constexpr std::size_t StorageFileInfo::kLeastSize;

std::optional<StorageFileInfo> StorageFileInfo::decode(std::span<const std::byte> record) {
    if (record.size() < kLeastSize)
        return std::nullopt;
    const auto date = [&](std::size_t at) {
        return Date() + DateSpan(static_cast<std::int64_t>(load_number(record.data() + at, 8)));
    };
    StorageFileInfo info;
    info.created = date(0);
    info.modified = date(kModified);
    info.attribute = static_cast<std::uint32_t>(load_number(record.data() + kAttribute, 4));
    info.name.resize((record.size() - kName) / 2 - 2);
    for (std::size_t i = 0; i < info.name.size(); ++i)
        info.name[i] = static_cast<wchar>(load_number(record.data() + kName + 2 * i, 2));
    return info;
}

std::vector<std::byte> StorageFileInfo::encode() const {
    std::vector<std::byte> record(kLeastSize + 2 * name.size());
    store_number(record.data(), created.ticks(), 8);
    store_number(record.data() + kModified, modified.ticks(), 8);
    store_number(record.data() + kAttribute, attribute, 4);
    for (std::size_t i = 0; i < name.size(); ++i)
        store_number(record.data() + kName + 2 * i, name[i], 2);
    return record;
}

} // namespace core
