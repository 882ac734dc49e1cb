// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Calls on files that do not stop half way. Each throws what the file throws.
namespace core {

/// Reads from `offset` on until `bytes` is full or the file ends; returns how many bytes it
/// read.
[[nodiscard]] CORE_API std::size_t read_all_at(IFile& file, std::uint64_t offset, std::span<std::byte> bytes);
/// Writes all of `bytes` at `offset`. Throws FileException (ENOSPC) when the file takes nothing
/// and gives no reason. What was written before a failure stays.
CORE_API void write_all_at(IFile& file, std::uint64_t offset, std::span<const std::byte> bytes);
/// Writes all of `bytes` at the current position, which moves behind them. Throws as write_all_at() does.
CORE_API void write_all(IFile& file, std::span<const std::byte> bytes);

/// Returns all bytes of a file. Its length is not believed before the bytes are there. Throws FileException
/// (EFBIG) when memory cannot address that many.
[[nodiscard]] CORE_API std::vector<std::byte> read_whole(IFile& file);
/// Writes all bytes of `from`, from its start on, at the current position of `to`; returns how many bytes
/// that were. Throws as write_all() does; what was written before a failure stays.
CORE_API std::uint64_t copy_bytes(IFile& from, IFile& to);

} // namespace core
