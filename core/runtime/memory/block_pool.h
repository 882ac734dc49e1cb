// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace core {

/// Returns memory for a small object: from free lists of the thread, of fixed sizes, which are filled from
/// chunks that go back to the system when all their blocks are free, except 16 MiB. A block may be freed on
/// another thread. It is aligned to 16 bytes. Blocks over 256 bytes are the system's own. Throws
/// std::bad_alloc.
[[nodiscard]] void* allocate_block(std::size_t size);
/// Frees a block of `size` bytes, the size that was asked for; null is ignored.
void free_block(void* block, std::size_t size) noexcept;

} // namespace core
