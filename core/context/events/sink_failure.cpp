// SPDX-License-Identifier: Apache-2.0
#include "core/context/events/sink_table.h"

namespace core::detail {

void report_sink_failure(const EventNames&) noexcept {}

} // namespace core::detail
