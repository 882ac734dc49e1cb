// SPDX-License-Identifier: Apache-2.0
#include "core/dates/time_zone.h"

#include <optional>

namespace core {
namespace {

std::unique_ptr<icu::TimeZone> find_zone(const std::string& name) {
    return std::unique_ptr<icu::TimeZone>(
        name.empty() ? icu::TimeZone::createDefault()
                     : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
}

struct NamedZone {
    std::string name;
    TimeZone zone;
};

} // namespace

TimeZone::TimeZone(const std::string& name) : zone_(find_zone(name)) {}

std::chrono::milliseconds TimeZone::offsetAtUniversal(std::int64_t moment) const {
    std::int32_t standard = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone_->getOffset(static_cast<UDate>(moment), false, standard, saving, status);
    return std::chrono::milliseconds(standard + saving);
}

std::chrono::milliseconds TimeZone::offsetAtLocal(std::int64_t moment) const {
    std::int32_t standard = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    const auto local = static_cast<UDate>(moment);
    // Every zone that ICU makes from a name is a BasicTimeZone.
    static_cast<const icu::BasicTimeZone&>(*zone_).getOffsetFromLocal(
        local, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, standard, saving, status);
    return std::chrono::milliseconds(standard + saving);
}

const TimeZone& time_zone(const std::string& name) {
    thread_local std::optional<NamedZone> last;
    if (!last || last->name != name)
        last.emplace(NamedZone{name, TimeZone(name)});
    return last->zone;
}

} // namespace core
