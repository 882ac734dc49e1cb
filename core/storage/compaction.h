// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/file_entry.h"
#include "core/storage/used_space.h"

#include <core/runtime/types.h>
#include <core/storage/layout.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace core {

/// What compacting knows from one step to the next: the chains of all files that can move, what stays where
/// it is, and where each chain belongs. Chains keep their order and lie side by side, behind a wall where
/// they do not fit before it.
struct Compaction {
    struct Chain {
        std::uint64_t address; // of the lowest block
        std::uint64_t blocks;
        std::size_t file;
        bool isContent;
        bool isTogether;
        bool stays = false; // it was found to be damaged
    };

    /// How many bytes one step moves of so many.
    [[nodiscard]] static std::uint64_t stepOf(std::uint64_t bytes) noexcept {
        return std::clamp(bytes / 64, std::uint64_t{1} << 20, std::uint64_t{64} << 20);
    }

    std::optional<std::uint64_t> counter; // of the state that this is true of
    std::vector<std::pair<wstring, FileEntry>> files;
    std::vector<Chain> chains;
    UsedSpace::Ranges walls;
    std::set<wstring> damaged; // files that stay
    int nodeSteps = 0;

    // What arrange() finds out.
    std::size_t packed = 0;      // how many of the chains are where they belong
    std::uint64_t holeBegin = 0; // where the next one belongs
    std::uint64_t holeEnd = 0;   // where those end that belong before the next wall
    std::uint64_t chainsEnd = 0; // where all of them will end

    void arrange(const StorageLayout& layout);
};

} // namespace core
