// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <compare>
#include <cstdint>

namespace core {

/// Dates and spans count ticks of 1/10 000 of a second.
inline constexpr std::int64_t kTicksPerSecond = 10'000;
inline constexpr std::int64_t kTicksPerMinute = 60 * kTicksPerSecond;
inline constexpr std::int64_t kTicksPerHour = 60 * kTicksPerMinute;
inline constexpr std::int64_t kTicksPerDay = 24 * kTicksPerHour;

/// The signed distance between two dates, in ticks: `DateSpan(3 * kTicksPerDay)`. A value type.
class DateSpan {
  public:
    constexpr DateSpan() noexcept = default;
    explicit constexpr DateSpan(std::int64_t ticks) noexcept : ticks_(ticks) {}

    [[nodiscard]] constexpr std::int64_t ticks() const noexcept { return ticks_; }
    friend constexpr auto operator<=>(const DateSpan&, const DateSpan&) = default;

  private:
    std::int64_t ticks_ = 0;
};

} // namespace core
