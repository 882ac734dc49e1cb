// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/guid.h>

#include <cstddef>
#include <span>

namespace core {

/// The library's one source of randomness. A program or a test can put its own in its place.
class CORE_API RandomSource {
  public:
    virtual ~RandomSource();
    /// Fills all of `bytes`. Threads: any. Must not throw: tables draw the seed of their hash where nothing
    /// can be reported, and an exception ends the program there.
    virtual void fill(std::span<std::byte> bytes) = 0;
};

/// Returns the source in use, borrowed: the system's, unless it was replaced.
[[nodiscard]] CORE_API RandomSource& current_random() noexcept;
/// Makes `source` the source in use; null restores the system's. It is not owned and must live until it is
/// replaced. Returns the source before, null for the system's.
CORE_API RandomSource* replace_random(RandomSource* source) noexcept;

/// Returns a new random id (version 4).
[[nodiscard]] CORE_API GUID new_guid();

} // namespace core
