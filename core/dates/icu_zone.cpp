// SPDX-License-Identifier: Apache-2.0
#include "core/dates/icu_zone.h"

#include "core/dates/unix_time.h"

#include <unicode/basictz.h>
#include <unicode/tztrans.h>

namespace core {
namespace {

/// The zone as a table: ICU walks its changes one by one. From the year 2040 on only last rules are left.
std::shared_ptr<const TimeZone> tabulated(const std::unique_ptr<icu::TimeZone>& zone) {
    constexpr std::int64_t kFirst = unix_day(1, 1, 1) * kSecondsPerDay;
    constexpr std::int64_t kCycle = unix_day(2040, 1, 1) * kSecondsPerDay;
    constexpr double kPerSecond = 1000;
    if (zone == nullptr || *zone == icu::TimeZone::getUnknown())
        return nullptr;
    std::int32_t standard = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone->getOffset(static_cast<double>(kFirst) * kPerSecond, false, standard, saving, status);
    const std::int32_t first = (standard + saving) / 1000;

    // Every zone that ICU makes from a name is a BasicTimeZone.
    const auto& basic = static_cast<const icu::BasicTimeZone&>(*zone);
    std::vector<TimeZone::Change> changes;
    icu::TimeZoneTransition next;
    for (std::int64_t moment = kFirst; moment < kCycle + TimeZone::kCycle + 2 * kSecondsPerDay;) {
        if (!basic.getNextTransition(static_cast<double>(moment) * kPerSecond, false, next))
            break;
        moment = static_cast<std::int64_t>(next.getTime() / kPerSecond);
        const auto* const rule = next.getTo();
        changes.push_back({moment, (rule->getRawOffset() + rule->getDSTSavings()) / 1000});
    }
    return std::make_shared<const TimeZone>(first, changes, TimeZone::Repeats::afterCycle, kCycle);
}

} // namespace

std::shared_ptr<const TimeZone> icu_zone(const std::string& name) {
    return tabulated(
        std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name))));
}

std::shared_ptr<const TimeZone> icu_machine_zone() {
    return tabulated(std::unique_ptr<icu::TimeZone>(icu::TimeZone::detectHostTimeZone()));
}

} // namespace core
