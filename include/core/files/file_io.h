// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Calls on files that do not stop half way.
namespace core {

/// Reads until `bytes` is full or the file ends; returns the count read.
[[nodiscard]] CORE_API std::size_t read_all_at(IFile& file, std::uint64_t position,
                                               std::span<std::byte> bytes);
/// Writes all of `bytes`. A file that takes nothing and says no reason counts as full.
CORE_API void write_all_at(IFile& file, std::uint64_t position, std::span<const std::byte> bytes);
/// The same at the current position.
CORE_API void write_all(IFile& file, std::span<const std::byte> bytes);

/// All bytes of a file. Its length is not believed before the bytes are there.
[[nodiscard]] CORE_API std::vector<std::byte> read_whole(IFile& file);
/// Appends all bytes of `from` at the current position of `to`; returns their count.
CORE_API std::uint64_t copy_bytes(IFile& from, IFile& to);

} // namespace core
