// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/script/engine.h>

namespace host {

/// Lets the scripts of an engine print to a console, and read files with a bar at a terminal: "-" is the
/// console's input. The console must outlive the engine.
void connect(core::script::Engine& engine, Console& console);

} // namespace host
