// SPDX-License-Identifier: Apache-2.0
#include "core/dates/find_zone.h"

#include <core/dates/date.h>
#include <core/dates/settings.h>
#include <core/runtime/clock.h>

#include <chrono>

namespace core {
namespace {

constexpr Date kUnixEpoch(1970, 1, 1);

/// Rounded down on both sides of the epoch.
std::int64_t unix_seconds(Date date) noexcept {
    return static_cast<std::int64_t>(date.ticks() / kTicksPerSecond) -
           static_cast<std::int64_t>(kUnixEpoch.ticks() / kTicksPerSecond);
}

} // namespace

Date Date::getCurrentDate() {
    // Whole seconds, so that a current date survives both text forms.
    const auto now = std::chrono::floor<std::chrono::seconds>(current_clock().now().time_since_epoch());
    return (kUnixEpoch + DateSpan(now.count() * kTicksPerSecond)).toLocalTime();
}

Date Date::begOfWeek() const noexcept {
    return begOfWeek(current_settings().part<DateSettings>().firstDayOfWeek);
}

Date Date::endOfWeek() const noexcept {
    return endOfWeek(current_settings().part<DateSettings>().firstDayOfWeek);
}

Date Date::toLocalTime() const {
    return toLocalTime(current_settings().part<DateSettings>().timeZone);
}

Date Date::toUniversalTime() const {
    return toUniversalTime(current_settings().part<DateSettings>().timeZone);
}

Date Date::toLocalTime(const std::string& zone) const {
    if (isEmpty() || !isInRange())
        return *this;
    return *this + DateSpan(time_zone(zone).offsetAtUniversal(unix_seconds(*this)) * kTicksPerSecond);
}

Date Date::toUniversalTime(const std::string& zone) const {
    if (isEmpty() || !isInRange())
        return *this;
    return *this - DateSpan(time_zone(zone).offsetAtLocal(unix_seconds(*this)) * kTicksPerSecond);
}

void Date::checkTimeZone(const std::string& zone) {
    (void)time_zone(zone);
}

} // namespace core
