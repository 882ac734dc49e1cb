// SPDX-License-Identifier: Apache-2.0
#include "core/storage/block_runs.h"

#include <algorithm>
#include <utility>

namespace core {

void BlockRuns::append(std::uint64_t address, std::uint64_t size, std::uint64_t count) {
    if (count == 0)
        return;
    count_ += count;
    if (!runs_.empty()) {
        BlockRun& last = runs_.back();
        if (last.size == size && last.address + lengthOf(last) == address) {
            last.count += count;
            return;
        }
    }
    runs_.push_back({address, size, count, capacity()});
}

BlockRuns BlockRuns::cutAt(std::uint64_t offset) {
    BlockRuns dropped(headerSize_);
    std::uint64_t count = 0;
    std::size_t kept = 0;
    for (; kept < runs_.size() && runs_[kept].offset < offset; ++kept) {
        BlockRun& run = runs_[kept];
        if (run.end() > offset) {
            const std::uint64_t stay = (offset - run.offset + run.size - 1) / run.size;
            dropped.append(run.address + stay * (headerSize_ + run.size), run.size, run.count - stay);
            run.count = stay;
        }
        count += run.count;
    }
    for (std::size_t i = kept; i < runs_.size(); ++i)
        dropped.append(runs_[i].address, runs_[i].size, runs_[i].count);
    runs_.erase(runs_.begin() + static_cast<std::ptrdiff_t>(kept), runs_.end());
    count_ = count;
    return dropped;
}

BlockRuns::Block BlockRuns::at(std::uint64_t offset) const noexcept {
    // Blocks without data are passed over: the run behind them begins at the same offset.
    auto run = std::upper_bound(runs_.begin(), runs_.end(), offset,
                                [](std::uint64_t p, const BlockRun& r) { return p < r.offset; });
    --run;
    const std::uint64_t index = (offset - run->offset) / run->size;
    return {run->address + index * (headerSize_ + run->size), run->size, run->offset + index * run->size};
}

BlockRuns::Block BlockRuns::last() const noexcept {
    const BlockRun& run = runs_.back();
    const std::uint64_t before = run.count - 1;
    return {run.address + before * (headerSize_ + run.size), run.size, run.offset + before * run.size};
}

bool BlockRuns::overlap() const {
    if (runs_.size() < 2)
        return false;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
    ranges.reserve(runs_.size());
    for (const BlockRun& run : runs_)
        ranges.emplace_back(run.address, run.address + lengthOf(run));
    std::sort(ranges.begin(), ranges.end());
    for (std::size_t i = 1; i < ranges.size(); ++i) {
        if (ranges[i].first < ranges[i - 1].second)
            return true;
    }
    return false;
}

} // namespace core
