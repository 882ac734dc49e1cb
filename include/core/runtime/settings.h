// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <string>

namespace core {

/// What happens to an exact half: towards zero, or away from it. More than half is always rounded away.
enum class NumericRoundMode : std::int32_t { round15as10 = 0, round15as20 = 1 };

/// What a process sets for all code that runs in it. Changed by the host before it
/// starts work; only read later.
struct Settings {
    NumericRoundMode roundMode = NumericRoundMode::round15as20;
    int firstDayOfWeek = 1; ///< 1 Monday ... 7 Sunday
    Locale locale;          ///< collation and the words of formats
    std::string timeZone;   ///< as in "Europe/Berlin"; empty: the system's zone
    wstring numericFormat;  ///< default format strings; empty: the plain form
    wstring dateFormat;
    wstring boolFormat;
};

/// The settings of the calling thread's process, or the defaults on a thread without one. The reference stays
/// valid as long as the process.
[[nodiscard]] CORE_API const Settings& current_settings() noexcept;

} // namespace core
