// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_reader.h"

#include <core/runtime/types.h>
#include <core/storage/file_info.h>

#include <cstdint>

namespace core {

/// Attributes are read in one call with the beginning of the content, which follows them where there was
/// room.
inline constexpr std::uint64_t kReadWithAttributes = 2048;

/// Reads the attributes of the inner file `name`, whose chain begins at `address`. Not more is read than such
/// attributes can have, wherever the address leads. Throws ChainInFileExc when they are not there.
[[nodiscard]] StorageFileInfo read_attributes(BlockReader& reader, std::uint64_t address, wstring_view name);

} // namespace core
