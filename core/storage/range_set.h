// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace core {

/// A set of addresses as ranges, by their beginnings; neighbours are one range.
class RangeSet {
  public:
    using Map = std::map<std::uint64_t, std::uint64_t>; // beginning, end
    using List = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

    [[nodiscard]] const Map& ranges() const noexcept { return ranges_; }
    [[nodiscard]] bool empty() const noexcept { return ranges_.empty(); }

    [[nodiscard]] bool touches(std::uint64_t begin, std::uint64_t end) const {
        return lastIn(begin, end).has_value();
    }
    [[nodiscard]] bool contains(std::uint64_t begin, std::uint64_t end) const {
        const auto next = ranges_.upper_bound(begin);
        return next != ranges_.begin() && std::prev(next)->second >= end;
    }

    /// The end of the last range that lies between `begin` and `end`, or in part.
    [[nodiscard]] std::optional<std::uint64_t> lastIn(std::uint64_t begin, std::uint64_t end) const {
        const auto next = ranges_.lower_bound(end);
        if (next == ranges_.begin() || std::prev(next)->second <= begin)
            return std::nullopt;
        return std::prev(next)->second;
    }
    /// What is in this set and not in `other`, by address, as `visit(begin, end)`, until that is false.
    template <class Visit>
    void forEachWithout(const RangeSet& other, Visit visit) const {
        for (const auto& [first, end] : ranges_) {
            std::uint64_t begin = first;
            auto out = other.ranges_.upper_bound(begin);
            if (out != other.ranges_.begin())
                begin = std::max(begin, std::prev(out)->second);
            for (; out != other.ranges_.end() && out->first < end; ++out) {
                if (begin < out->first && !visit(begin, out->first))
                    return;
                begin = out->second;
            }
            if (begin < end && !visit(begin, end))
                return;
        }
    }

    /// Adds a range of which nothing is in the set.
    void add(std::uint64_t begin, std::uint64_t end) {
        auto next = ranges_.lower_bound(begin);
        if (next != ranges_.end() && next->first == end) {
            end = next->second;
            next = ranges_.erase(next);
        }
        if (next != ranges_.begin() && std::prev(next)->second == begin)
            std::prev(next)->second = end;
        else
            ranges_.emplace_hint(next, begin, end);
    }

    /// Adds the ranges of a set that has nothing in common with this one, and takes them out of it. Their
    /// memory moves over, so that this cannot fail.
    void takeAll(RangeSet& other) noexcept {
        while (!other.ranges_.empty()) {
            auto range = other.ranges_.extract(other.ranges_.begin());
            auto next = ranges_.lower_bound(range.key());
            if (next != ranges_.end() && next->first == range.mapped()) {
                range.mapped() = next->second;
                next = ranges_.erase(next);
            }
            if (next != ranges_.begin() && std::prev(next)->second == range.key())
                std::prev(next)->second = range.mapped();
            else
                ranges_.insert(next, std::move(range));
        }
    }

    /// What is in any of some sets that have nothing in common, by address.
    [[nodiscard]] static List unite(std::initializer_list<const RangeSet*> sets) {
        List all;
        for (const RangeSet* const set : sets) {
            const auto middle = static_cast<std::ptrdiff_t>(all.size());
            all.insert(all.end(), set->ranges_.begin(), set->ranges_.end());
            std::inplace_merge(all.begin(), all.begin() + middle, all.end());
        }
        std::size_t count = 0;
        for (const auto& range : all) {
            if (count != 0 && all[count - 1].second == range.first)
                all[count - 1].second = range.second;
            else
                all[count++] = range;
        }
        all.resize(count);
        return all;
    }

    /// Takes a range out that is in the set as a whole.
    void take(std::uint64_t begin, std::uint64_t end) {
        const auto range = std::prev(ranges_.upper_bound(begin));
        const std::uint64_t rest = range->second;
        if (range->first == begin)
            ranges_.erase(range);
        else
            range->second = begin;
        if (end < rest)
            ranges_.emplace(end, rest);
    }

    /// Takes out what of a range is in the set.
    void remove(std::uint64_t begin, std::uint64_t end) {
        auto range = ranges_.upper_bound(begin);
        if (range != ranges_.begin() && std::prev(range)->second > begin)
            --range;
        while (range != ranges_.end() && range->first < end) {
            const auto [first, last] = *range;
            range = ranges_.erase(range);
            if (first < begin)
                ranges_.emplace_hint(range, first, begin);
            if (end < last)
                ranges_.emplace_hint(range, end, last);
        }
    }

    /// Takes out the ranges that begin from `begin` on and before `end`.
    void eraseFrom(std::uint64_t begin, std::uint64_t end) noexcept {
        ranges_.erase(ranges_.lower_bound(begin), ranges_.lower_bound(end));
    }

    /// Takes everything from `limit` on out.
    void cut(std::uint64_t limit) noexcept {
        ranges_.erase(ranges_.lower_bound(limit), ranges_.end());
        if (!ranges_.empty() && std::prev(ranges_.end())->second > limit)
            std::prev(ranges_.end())->second = limit;
    }

    void clear() noexcept { ranges_.clear(); }

  private:
    Map ranges_;
};

} // namespace core
