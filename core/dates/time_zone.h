// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

namespace core {

/// What the clocks of one time zone show: an offset from universal time, and the moments at which it changes.
/// Moments are seconds since 1970, universal or local as the function says; offsets are seconds east of
/// universal time. Immutable, so that threads may share it.
class TimeZone {
  public:
    /// From `moment` on, universal time, `offset` holds.
    struct Change {
        std::int64_t moment;
        std::int32_t offset;
    };

    /// How far the changes repeat themselves. The calendar does so every 400 years, and a zone's last rule
    /// with it: 400 years of changes stand for all that follow.
    enum class Repeats { never, afterCycle, always };

    /// The seconds of 400 years.
    static constexpr std::int64_t kCycle = std::int64_t{146'097} * 86'400;

    /// The zone in which `first` holds before all `changes`, which are ordered by their moments. Of several
    /// at one moment the last counts. Where they repeat, the cycle begins at `cycle`, and `changes` reach
    /// from two days before it to two days behind its end.
    TimeZone(std::int32_t first, const std::vector<Change>& changes, Repeats repeats = Repeats::never,
             std::int64_t cycle = 0);

    /// The offset at a universal moment.
    [[nodiscard]] std::int32_t offsetAtUniversal(std::int64_t moment) const noexcept;
    /// The offset at a local moment; one that is skipped or doubled is read by the offset before the change.
    [[nodiscard]] std::int32_t offsetAtLocal(std::int64_t moment) const noexcept;

  private:
    [[nodiscard]] std::int32_t find(const std::vector<std::int64_t>& moments,
                                    std::int64_t moment) const noexcept;

    std::vector<std::int64_t> universal_;
    std::vector<std::int64_t> local_;   ///< the local moments from which the new offset is read
    std::vector<std::int32_t> offsets_; ///< one more than there are changes
    Repeats repeats_;
    std::int64_t cycle_;
};

} // namespace core
