// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/dates/time_zone.h"

#include <optional>
#include <string_view>

namespace core {

/// The zone in the bytes of a zone file, in the form TZif (RFC 9636) of any version. None for anything else,
/// and for a file that is damaged: nothing in it is believed.
[[nodiscard]] std::optional<TimeZone> read_zone_file(std::string_view bytes);

} // namespace core
