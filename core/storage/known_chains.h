// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_runs.h"
#include "core/storage/canonical_chain.h"

#include <core/storage/storage_check.h>

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace core {

/// What a walk found out of a chain.
struct KnownChain {
    BlockRuns blocks;                      ///< every block once, as far as the chain can be followed
    std::uint64_t size;                    ///< bytes of content, as the chain says
    std::optional<std::uint64_t> damage;   ///< where it shows, none in a sound chain
    std::optional<CanonicalChain> content; ///< none where it cannot be read
};

/// Chains by the address of their first block, and by what they are used for. It is true as long as their
/// space stays as it is.
using KnownChains = std::map<std::pair<std::uint64_t, StorageUse>, KnownChain>;

} // namespace core
