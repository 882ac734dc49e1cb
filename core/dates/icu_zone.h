// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/dates/time_zone.h"

#include <memory>
#include <string>

namespace core {

/// The zone of that name by ICU's own data, which is as old as ICU. Null when ICU does not know it.
[[nodiscard]] std::shared_ptr<const TimeZone> icu_zone(const std::string& name);
/// The zone that ICU finds the machine to be in.
[[nodiscard]] std::shared_ptr<const TimeZone> icu_machine_zone();

} // namespace core
