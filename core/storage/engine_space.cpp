// SPDX-License-Identifier: Apache-2.0
#include "core/storage/chain_survey.h"
#include "core/storage/engine.h"
#include "core/storage/used_space.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace core {
namespace {

// Walking all chains of so short a container costs less than making a change durable.
constexpr std::uint64_t kShort = std::uint64_t{16} << 20;
// Longer ones are walked at each 64th commit, and before they grow by a 16th without.
constexpr std::uint64_t kCommits = 64;
constexpr std::uint64_t kGrowth = 16;

RangeSet to_set(const UsedSpace::Ranges& ranges) {
    RangeSet set;
    for (const auto& [begin, end] : ranges)
        set.add(begin, end);
    return set;
}

/// What of `ranges` is not in `used`.
RangeSet without(const UsedSpace::Ranges& ranges, const UsedSpace::Ranges& used) {
    RangeSet rest;
    for (const auto& [begin, end] : ranges) {
        std::uint64_t at = begin;
        for (auto taken = UsedSpace::firstBehind(used, begin); taken != used.end() && taken->first < end;
             ++taken) {
            if (taken->first > at)
                rest.add(at, taken->first);
            at = taken->second;
        }
        if (at < end)
            rest.add(at, end);
    }
    return rest;
}

} // namespace

/// The free chain has no checksum. What it calls free is written to only after this process has walked all
/// chains and found that none of them lies there; until then new blocks go behind everything, and what is
/// taken out of use is not listed as free.
void StorageEngine::loadFreeSpace() {
    const bool hasGrown =
        !spaceVerified_ && unverifiedEnd_ != 0 && space_.end() - unverifiedEnd_ > unverifiedEnd_ / kGrowth;
    if (spaceCounter_ == head_.counter && !hasGrown)
        return;
    spaceCounter_.reset();
    freeTreeLost_ = false;
    if (head_.tableLayout == TableLayout::tree)
        loadFreeTree();
    else
        loadFreeList(hasGrown);
    // New blocks go there, and the file would seem to be as long. So an end is not believed when more is
    // missing than is left.
    const std::uint64_t length = std::max(file_->length(), layout_.emptyLength());
    if (space_.end() > length && space_.end() - length > length)
        throwBadFormat();
    spaceCounter_ = head_.counter;
}

void StorageEngine::loadFreeList(bool hasGrown) {
    spaceTree_.reset();
    RangeSet free;
    FreeChain list = read_free_chain(reader_, head_.freeChain, table_.end(),
                                     [&](std::uint64_t begin, std::uint64_t end) { free.add(begin, end); });
    freeBlocks_ = list.damage ? BlockRuns(layout_.blockHeaderSize()) : list.chain.runs();
    space_.set(list.damage ? RangeSet() : std::move(free), table_.end());
    // Who has verified what is free writes it down with the next commit.
    spaceVerified_ = spaceVerified_ && verifiedList_ && !list.damage;
    if (!spaceVerified_) {
        const std::uint64_t length = file_->length();
        const bool isSuspect = list.damage || length < table_.end();
        if (isSuspect || hasGrown || length <= kShort || head_.counter % kCommits == 0)
            verifySpace();
        else
            distrustSpace();
    }
}

/// Free space in table layout 2 has checksums.
void StorageEngine::trustSpace() noexcept {
    spaceVerified_ = spaceComplete_ = true;
    sharedSpace_.clear();
    cutChains_.clear();
}

void StorageEngine::distrustSpace() {
    unverifiedEnd_ = std::max(table_.end(), file_->length());
    space_.distrust(unverifiedEnd_);
}

/// Makes what is free what no chain uses. Where chains are damaged or share blocks, nothing that they may use
/// becomes free: not what was not listed, and nothing behind the end.
void StorageEngine::verifySpace() {
    UsedSpace used;
    UsedSpace listed;
    bool sound = true;
    cutChains_.clear();
    const std::uint64_t length = file_->length();
    ChainSurvey survey(reader_, length, table_, head_, tableBlocks_, nullptr);
    survey.use(knownChains(), false);
    const bool all = survey.walk(
        [&](const ChainSurvey::Chain& chain) {
            if (chain.use == StorageUse::freeChain && chain.damage)
                return; // it is written again in any case
            for (const BlockRun& run : chain.blocks.runs())
                used.add(run.address, run.address + chain.blocks.lengthOf(run));
            sound = sound && !chain.damage;
            if (chain.damage && length < table_.end())
                cutChains_.push_back(chain.address);
        },
        [&](std::uint64_t begin, std::uint64_t end) { listed.add(begin, end); });
    if (!all) {
        distrustSpace();
        return;
    }
    used.settle();
    listed.settle();
    const std::uint64_t first = layout_.emptyLength();
    const std::uint64_t end = used.used().empty() ? first : std::max(first, used.used().back().second);
    spaceComplete_ = sound && used.shared().empty();
    if (spaceComplete_)
        space_.set(without({{first, end}}, used.used()), end);
    else
        space_.set(without(listed.used(), used.used()), std::max(end, length));
    sharedSpace_ = to_set(used.shared());
    spaceVerified_ = true;
}

/// The blocks that no other chain has, too.
BlockRuns StorageEngine::withoutShared(const BlockRuns& blocks) const {
    BlockRuns own(layout_.blockHeaderSize());
    for (const BlockRun& run : blocks.runs()) {
        const std::uint64_t step = layout_.blockLength(run.size);
        for (std::uint64_t i = 0; i < run.count; ++i) {
            const std::uint64_t address = run.address + i * step;
            if (!sharedSpace_.touches(address, address + step))
                own.append(address, run.size);
        }
    }
    return own;
}

/// A file that ends too early must not grow: what is missing would become zeros, and look whole. Only a
/// change that takes the chains out of use that miss something may make it longer.
void StorageEngine::requireNoCutChains(const FilesTable& table) const {
    if (cutChains_.empty())
        return;
    const auto isCut = [&](std::uint64_t address) {
        return std::find(cutChains_.begin(), cutChains_.end(), address) != cutChains_.end();
    };
    std::optional<wstring> cut;
    table.forEach([&](wstring_view name, const FileEntry& entry) {
        if (!cut && (isCut(entry.attributes) || isCut(entry.data)))
            cut = name;
    });
    if (cut)
        throwDamaged(*cut);
}

} // namespace core
