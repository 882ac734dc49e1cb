// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>
#include <core/runtime/settings.h>

#include <string>

namespace core {

/// The calendar of a process. Part of its Settings.
struct DateSettings {
    /// Tells this part of the settings from others.
    static constexpr GUID kId = "3027f1f6-874d-4a6f-918c-784c711c1d27"_guid;

    int firstDayOfWeek = 1; ///< 1 Monday ... 7 Sunday
    std::string timeZone;   ///< as in "Europe/Berlin"; empty: the system's zone
};

} // namespace core
