// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/profiles/settings.h>

namespace core {

/// Where settings are kept, as URLs; empty where there is no place.
struct ProfilePlaces {
    wstring system;
    wstring user;
};
[[nodiscard]] ProfilePlaces profile_places(const ProfileSettings& settings);

} // namespace core
