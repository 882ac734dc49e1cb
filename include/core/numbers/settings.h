// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>
#include <core/runtime/settings.h>

#include <cstdint>

namespace core {

/// What happens to an exact half: towards zero, or away from it. More than half is always rounded away.
enum class NumericRoundMode : std::int32_t {
    round15as10 = 0, ///< an exact half is dropped: 1.5 becomes 1
    round15as20 = 1  ///< an exact half counts as one: 1.5 becomes 2
};

/// How a process rounds numbers. Part of its Settings.
struct NumericSettings {
    /// Tells this part of the settings from others.
    static constexpr GUID kId = "a40ef479-70c6-416f-876e-b9462355da89"_guid;

    NumericRoundMode roundMode = NumericRoundMode::round15as20; ///< where no mode is given
};

} // namespace core
