// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/runtime/settings.h>

namespace host {

/// The settings of a process of this program: where it keeps those of its user.
[[nodiscard]] core::Settings settings_of_program();

/// Reads what the user has set for the program itself, below "host": language, locale, mode, formats,
/// history. Options of the command line count before it. What cannot be read or is not accepted is shown as a
/// failure and does not count; nothing here keeps the program from running.
void read_settings_at_start(Console& console);

} // namespace host
