// SPDX-License-Identifier: Apache-2.0
#include "core/storage/compaction.h"

#include <algorithm>

namespace core {

void Compaction::arrange(const StorageLayout& layout) {
    const std::uint64_t step = layout.blockLength(kStorageBlockSize);
    std::sort(chains.begin(), chains.end(),
              [](const auto& a, const auto& b) { return a.address < b.address; });
    std::sort(walls.begin(), walls.end());
    packed = 0;
    std::optional<std::uint64_t> hole;
    bool isBeforeWall = true; // the hole goes on
    std::uint64_t at = layout.emptyLength();
    auto wall = walls.begin();
    for (const Chain& chain : chains) {
        const std::uint64_t length = chain.blocks * step;
        for (; wall != walls.end() && at + length > wall->first; ++wall) {
            at = std::max(at, wall->second);
            isBeforeWall = !hole;
        }
        if (!hole && chain.isTogether && chain.address == at)
            ++packed;
        else if (!hole)
            hole = holeEnd = at;
        at += length;
        if (hole && isBeforeWall)
            holeEnd = at;
    }
    for (; wall != walls.end(); ++wall)
        at = std::max(at, wall->second);
    chainsEnd = at;
    holeBegin = hole.value_or(at);
}

} // namespace core
