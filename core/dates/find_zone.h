// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/dates/time_zone.h"

#include <memory>
#include <string>

namespace core {

/// The zone that `name` means where the variable TZ has that value: a file, absolute or in the folder TZDIR
/// (else the system's), in front of which ":" may stand; else a rule as in "CET-1CEST,M3.5.0,M10.5.0/3"; else
/// a zone that ICU knows. Null for any other name.
[[nodiscard]] std::shared_ptr<const TimeZone> find_zone(std::string_view name);
/// The zone of the system: that of TZ or, where TZ is not set, of /etc/localtime. Null for a TZ that names
/// no zone.
[[nodiscard]] std::shared_ptr<const TimeZone> find_system_zone(const char* tz);

/// The zone that `name` means, the system's for an empty name. Throws TimeZoneException if none exists.
/// The reference holds until this thread's next call. Zones are read once and shared; the system's stays what
/// it was at its first use.
[[nodiscard]] const TimeZone& time_zone(const std::string& name);

} // namespace core
