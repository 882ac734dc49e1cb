// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core {

/// Where the settings of the current process are kept, as URLs; empty where there is no place.
struct ProfilePlaces {
    wstring system;
    wstring user;
};
[[nodiscard]] ProfilePlaces profile_places();

} // namespace core
