// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/dates/time_zone.h"

#include <optional>
#include <string_view>
#include <vector>

namespace core {

/// The rule of a zone as the variable TZ and the end of a zone file spell it: "CET-1CEST,M3.5.0,M10.5.0/3".
/// Offsets are seconds east of universal time, the other way round than in the text.
struct ZoneRule {
    /// A moment of each year on a local clock.
    struct Day {
        enum class Form { monthWeek, withoutLeapDay, withLeapDay };
        Form form = Form::monthWeek;
        int month = 1;   ///< 1 ... 12
        int week = 1;    ///< 1 ... 5; the fifth is the last
        int day = 0;     ///< of the week, 0 Sunday ... 6 Saturday; else of the year, from 0
        int time = 7200; ///< seconds from midnight, possibly negative or of a later day
    };
    struct Summer {
        std::int32_t offset;
        Day begin; ///< by the standard clock
        Day end;   ///< by the summer clock
    };

    std::int32_t standard = 0;
    std::optional<Summer> summer;

    /// None when `text` is not such a rule. Summer time without dates has those of the United States, as in
    /// the system's own reader.
    [[nodiscard]] static std::optional<ZoneRule> parse(std::string_view text) noexcept;

    /// The changes of the years `first` to `last`, in the order of their moments.
    [[nodiscard]] std::vector<TimeZone::Change> changes(int first, int last) const;
    /// The zone that keeps this rule at all times.
    [[nodiscard]] TimeZone zone() const;
    /// The zone that keeps it from the last of `known` on; `first` is the offset before them.
    [[nodiscard]] TimeZone zoneAfter(std::int32_t first, std::vector<TimeZone::Change> known) const;
};

} // namespace core
