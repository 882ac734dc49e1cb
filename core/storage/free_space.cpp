// SPDX-License-Identifier: Apache-2.0
#include "core/storage/free_space.h"

#include "core/storage/little_endian.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

namespace core {
namespace {

// This many blocks and more stay together, so that files are read in long runs.
constexpr std::uint64_t kMany = 64;

} // namespace

void FreeSpace::set(RangeSet free, std::uint64_t end) noexcept {
    free_ = std::move(free);
    fresh_.clear();
    released_.clear();
    listed_.clear();
    trusted_ = true;
    end_ = committedEnd_ = end;
    longest_ = std::numeric_limits<std::uint64_t>::max();
}

bool FreeSpace::follow(const RangeSet::List& gone, const RangeSet::List& added, std::uint64_t end) {
    for (const auto& [begin, stop] : gone)
        free_.eraseFrom(begin, stop);
    for (const auto& [begin, stop] : added) {
        if (free_.touches(begin - 1, stop + 1)) // ranges that touch would be one
            return false;
        free_.add(begin, stop);
    }
    end_ = committedEnd_ = end;
    longest_ = std::numeric_limits<std::uint64_t>::max();
    return free_.empty() || std::prev(free_.ranges().end())->second <= end;
}

void FreeSpace::distrust(std::uint64_t end) noexcept {
    listed_ = std::exchange(free_, {});
    trusted_ = false;
    end_ = committedEnd_ = end;
}

void FreeSpace::avoid(RangeSet pinned) noexcept {
    pinned_ = std::move(pinned);
    longest_ = std::numeric_limits<std::uint64_t>::max();
}

void FreeSpace::take(std::uint64_t address, std::uint64_t count, std::vector<BlockRange>& ranges) {
    const std::uint64_t length = count * layout_->blockLength(kStorageBlockSize);
    if (address > end_) // over what is pinned
        free_.add(end_, address);
    if (address >= end_)
        end_ = address + length;
    else
        free_.take(address, address + length);
    fresh_.add(address, address + length);
    if (!ranges.empty() &&
        ranges.back().address + ranges.back().count * layout_->blockLength(kStorageBlockSize) == address)
        ranges.back().count += count;
    else
        ranges.push_back({address, count});
}

std::optional<std::vector<BlockRange>> FreeSpace::place(std::uint64_t count) {
    const std::uint64_t step = layout_->blockLength(kStorageBlockSize);
    std::vector<BlockRange> found;
    std::uint64_t left = count;
    if (count > layout_->limit() / step)
        return std::nullopt;
    if (count >= kMany && longest_ >= count * step) {
        std::uint64_t longest = 0;
        free_.forEachWithout(pinned_, [&](std::uint64_t begin, std::uint64_t end) {
            longest = std::max(longest, end - begin);
            if (end - begin >= count * step) {
                found.push_back({begin, count});
                left = 0;
            }
            return left != 0;
        });
        if (left != 0)
            longest_ = longest;
    } else if (count < kMany) {
        free_.forEachWithout(pinned_, [&](std::uint64_t begin, std::uint64_t end) {
            if (const std::uint64_t blocks = std::min(left, (end - begin) / step); blocks != 0) {
                found.push_back({begin, blocks});
                left -= blocks;
            }
            return left != 0;
        });
    }
    if (left != 0) {
        const std::uint64_t behind = placeAtEnd(left * step);
        if (behind > layout_->limit() || left > (layout_->limit() - behind) / step)
            return std::nullopt;
        found.push_back({behind, left});
    }
    return found;
}

bool FreeSpace::allocate(std::uint64_t count, std::vector<BlockRange>& ranges) {
    const auto found = place(count);
    if (!found)
        return false;
    for (const BlockRange& range : *found)
        take(range.address, range.count, ranges);
    return true;
}

bool FreeSpace::claim(const BlockRuns& blocks, bool isComplete) {
    const auto isFree = [&](const BlockRun& run) {
        const std::uint64_t end = std::min(end_, run.address + blocks.lengthOf(run));
        return run.address >= end || free_.contains(run.address, end);
    };
    if (isComplete && !std::all_of(blocks.runs().begin(), blocks.runs().end(), isFree))
        return false;
    for (const BlockRun& run : blocks.runs()) {
        const std::uint64_t end = run.address + blocks.lengthOf(run);
        free_.remove(run.address, end);
        listed_.remove(run.address, end);
        if (run.address > end_)
            free_.add(end_, run.address);
        end_ = std::max(end_, end);
        fresh_.add(run.address, end);
    }
    return true;
}

bool FreeSpace::allocateAtEnd(std::uint64_t count, std::vector<BlockRange>& ranges) {
    const std::uint64_t step = layout_->blockLength(kStorageBlockSize);
    if (count > layout_->limit() / step)
        return false;
    const std::uint64_t behind = placeAtEnd(count * step);
    if (behind > layout_->limit() || count > (layout_->limit() - behind) / step)
        return false;
    take(behind, count, ranges);
    return true;
}

/// Where `length` bytes behind the end are not pinned.
std::uint64_t FreeSpace::placeAtEnd(std::uint64_t length) const {
    std::uint64_t place = end_;
    if (length == 0)
        return place;
    while (const auto pinned = pinned_.lastIn(place, place + length))
        place = *pinned;
    return place;
}

std::optional<BlockRange> FreeSpace::allocateTogether(std::uint64_t count, std::uint64_t from) {
    const std::uint64_t step = layout_->blockLength(kStorageBlockSize);
    if (count > layout_->limit() / step)
        return std::nullopt;
    std::vector<BlockRange> ranges;
    std::optional<std::uint64_t> place;
    if (longest_ >= count * step)
        free_.forEachWithout(pinned_, [&](std::uint64_t begin, std::uint64_t end) {
            begin = std::max(begin, from);
            if (begin < end && end - begin >= count * step)
                place = begin;
            return !place;
        });
    if (place)
        take(*place, count, ranges);
    else if (!allocateAtEnd(count, ranges))
        return std::nullopt;
    return ranges.front();
}

std::uint64_t FreeSpace::roomAt(std::uint64_t address) const {
    std::uint64_t room = 0;
    free_.forEachWithout(pinned_, [&](std::uint64_t begin, std::uint64_t end) {
        if (begin == address)
            room = end - begin;
        return begin < address;
    });
    return room;
}

bool FreeSpace::isUsed(const BlockRuns& blocks) const {
    const auto& runs = blocks.runs();
    return std::all_of(runs.begin(), runs.end(), [&](const BlockRun& run) {
        const std::uint64_t end = run.address + blocks.lengthOf(run);
        return run.address >= layout_->emptyLength() && end <= end_ && !free_.touches(run.address, end) &&
               !released_.touches(run.address, end);
    });
}

bool FreeSpace::release(const BlockRuns& blocks) {
    if (trusted_ && !isUsed(blocks))
        return false;
    for (const BlockRun& run : blocks.runs()) {
        const std::uint64_t end = run.address + blocks.lengthOf(run);
        // A run may begin in fresh space and go on in committed space, or the other way round.
        for (std::uint64_t at = run.address; at < end;) {
            const std::uint64_t step = layout_->blockHeaderSize() + run.size;
            std::uint64_t stop = end;
            const bool fresh = fresh_.contains(at, at + step);
            if (fresh ? !fresh_.contains(at, end) : fresh_.touches(at, end))
                stop = at + step;
            if (fresh) {
                fresh_.take(at, stop);
                free_.add(at, stop);
                longest_ = std::numeric_limits<std::uint64_t>::max();
            } else if (trusted_) {
                released_.add(at, stop);
            }
            at = stop;
        }
    }
    return true;
}

FreeSpace::Outlook FreeSpace::outlook() const {
    Outlook result{RangeSet::unite({&listed_, &free_, &released_}), end_};
    if (!result.free.empty() && result.free.back().second == end_) {
        result.end = result.free.back().first;
        result.free.pop_back();
    }
    return result;
}

/// A committed range is free and fresh space side by side. So what touches neither fresh nor released space
/// stays as it is.
FreeSpace::Delta FreeSpace::delta() const {
    Delta result{{}, {}, end_};
    const auto& free = free_.ranges();
    RangeSet beside;
    const auto addBeside = [&](std::uint64_t begin, std::uint64_t end) {
        auto next = free.lower_bound(begin);
        if (next != free.begin() && std::prev(next)->second == begin &&
            !beside.contains(std::prev(next)->first, begin))
            beside.add(std::prev(next)->first, begin);
        if (next != free.end() && next->first == end && !beside.contains(end, next->second))
            beside.add(end, next->second);
    };
    for (const auto& [begin, end] : fresh_.ranges()) {
        addBeside(begin, end);
        if (begin < committedEnd_)
            result.before.add(begin, std::min(end, committedEnd_));
    }
    for (const auto& [begin, end] : released_.ranges()) {
        addBeside(begin, end);
        result.after.add(begin, end);
    }
    auto range = free.lower_bound(committedEnd_);
    if (range != free.begin() && std::prev(range)->second > committedEnd_)
        --range;
    for (; range != free.end(); ++range) {
        if (!beside.contains(range->first, range->second))
            beside.add(range->first, range->second);
    }
    for (const auto& [begin, end] : beside.ranges()) {
        if (begin < committedEnd_)
            result.before.add(begin, std::min(end, committedEnd_));
        result.after.add(begin, end);
    }
    if (!result.after.empty() && std::prev(result.after.ranges().end())->second == end_) {
        result.end = std::prev(result.after.ranges().end())->first;
        result.after.cut(result.end);
    }
    return result;
}

void FreeSpace::commit(std::uint64_t end) noexcept {
    committedEnd_ = end;
    free_.takeAll(released_);
    fresh_.clear();
    longest_ = std::numeric_limits<std::uint64_t>::max();
    trim();
}

void FreeSpace::rollback() noexcept {
    free_.takeAll(fresh_);
    free_.cut(committedEnd_);
    end_ = committedEnd_;
    released_.clear();
    longest_ = std::numeric_limits<std::uint64_t>::max();
}

/// Free space at the end is given up: the container ends before it.
void FreeSpace::trim() noexcept {
    const auto& ranges = free_.ranges();
    if (!ranges.empty() && std::prev(ranges.end())->second == end_) {
        end_ = std::prev(ranges.end())->first;
        free_.cut(end_);
    }
}

std::vector<std::byte> FreeSpace::encode(const RangeSet::List& free, const StorageLayout& layout) {
    std::vector<std::byte> content(free.size() * 2 * layout.width);
    std::byte* to = content.data();
    for (const auto& [begin, end] : free) {
        store_number(to, begin, layout.width);
        store_number(to + layout.width, end - begin, layout.width);
        to += 2 * layout.width;
    }
    return content;
}

} // namespace core
