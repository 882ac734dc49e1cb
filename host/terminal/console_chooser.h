// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/tables/chooser.h>

namespace host {

/// Lets the user choose at the terminal: rows and items are listed with numbers, and a number is read. An
/// empty line, or the end of the input, cancels. `console`, which must outlive the result, has to be one.
[[nodiscard]] core::InterfacePtr<core::IChooser> create_console_chooser(Console& console);

} // namespace host
