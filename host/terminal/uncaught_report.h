// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/runtime/uncaught.h>

namespace host {

/// Shows failures that nobody catches, as those of handlers of events: where they escaped from, and the line
/// of the script. The console must outlive it.
[[nodiscard]] core::InterfacePtr<core::IUncaughtExceptions> create_uncaught_report(Console& console);

} // namespace host
