// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <cstddef>

namespace core {

class LiveCounter;

/// Memory for small counted objects: per-thread free lists of fixed sizes, filled from chunks that go back to
/// the system when all their blocks are free, but for 16 MiB. A block may be freed on another thread than the
/// one that allocated it. Blocks over 256 bytes go straight to the system. Throws std::bad_alloc when there
/// is no memory.
[[nodiscard]] CORE_API void* allocate_block(std::size_t size);
/// `size` is the one that was allocated.
CORE_API void free_block(void* block, std::size_t size) noexcept;

/// The same for the block of an object whose life is counted: raises the counter, and lowers it again.
[[nodiscard]] CORE_API void* allocate_counted(std::size_t size, LiveCounter& counter);
CORE_API void free_counted(void* block, std::size_t size, LiveCounter& counter) noexcept;

} // namespace core
