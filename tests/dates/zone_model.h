// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/environment.h"

#include <core/dates.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <set>
#include <string>
#include <vector>

/// The time zones of the C library, beside which ours are tested.
namespace test {

inline std::int64_t c_offset(std::int64_t moment) {
    const std::time_t time = moment;
    std::tm parts{};
    ::localtime_r(&time, &parts);
    return parts.tm_gmtoff;
}

/// The universal time of a local one: the first at which clocks show it or, where none do, by the offset
/// before they were set forward.
inline std::int64_t c_universal(std::int64_t local) {
    constexpr std::int64_t kDay = 86'400;
    std::set<std::int64_t> offsets;
    for (const std::int64_t near : {local - kDay, local - kDay / 2, local, local + kDay / 2, local + kDay})
        offsets.insert(c_offset(near));
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) // the greatest is the earliest
        if (c_offset(local - *offset) == *offset)
            return local - *offset;
    return local - c_offset(local - *offsets.rbegin());
}

inline core::Date to_date(std::int64_t moment) {
    return core::Date(1970, 1, 1) + core::DateSpan(moment * core::kTicksPerSecond);
}

/// The moments between two that the zone has an offset of its own from, to the second.
inline std::vector<std::int64_t> c_changes(std::int64_t from, std::int64_t to) {
    constexpr std::int64_t kStep = 20 * 86'400;
    std::vector<std::int64_t> changes;
    for (; from < to; from += kStep) {
        std::int64_t before = from;
        std::int64_t after = from + kStep;
        if (c_offset(before) == c_offset(after))
            continue;
        while (after - before > 1) {
            const std::int64_t middle = before + (after - before) / 2;
            (c_offset(middle) == c_offset(from) ? before : after) = middle;
        }
        changes.push_back(after);
    }
    return changes;
}

/// Compares the zone of that name with the C library's from the year `first` on: at so many moments of all
/// dates and of the last centuries, and around the changes of clocks.
inline void expect_as_in_c_library(const std::string& zone, int first, int count) {
    const support::EnvironmentVariable variable("TZ", zone.c_str());
    ::tzset();
    constexpr std::int64_t kYear = 31'556'952;
    std::mt19937_64 random(1);
    const auto between = [&](std::int64_t from, std::int64_t to) {
        return (from - 1970) * kYear +
               static_cast<std::int64_t>(random() % static_cast<std::uint64_t>((to - from) * kYear));
    };
    std::vector<std::int64_t> moments;
    for (int i = 0; i < count; ++i) {
        moments.push_back(between(first + 1, 9999));
        moments.push_back(between(std::max(first, 1850), 2050));
    }
    auto changes = c_changes(between(std::max(first, 1895), 1972), between(2040, 2041));
    for (const std::int64_t change : c_changes(between(4000, 4001), between(4002, 4003)))
        changes.push_back(change);
    for (const std::int64_t change : changes)
        for (const std::int64_t near : {-7200, -3600, -1, 0, 1, 3599, 3600, 7200})
            for (const std::int64_t clock : {std::int64_t{0}, c_offset(change - 1), c_offset(change)})
                moments.push_back(change + near + clock);
    for (const std::int64_t moment : moments) {
        ASSERT_EQ(to_date(moment).toLocalTime(zone), to_date(moment + c_offset(moment)))
            << zone << ' ' << moment;
        ASSERT_EQ(to_date(moment).toUniversalTime(zone), to_date(c_universal(moment)))
            << zone << " local " << moment;
    }
}

} // namespace test
