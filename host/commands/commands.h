// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console.h"
#include "host/exit_code.h"

#include <functional>

namespace CLI {
class App;
} // namespace CLI

/// The commands of corehost. Each adds itself to the command line, and sets `action` when the user asks for
/// it; the action runs after the command line has been read, in a process of its own.
namespace host {

using Action = std::function<ExitCode()>;

void add_container_command(CLI::App& app, Console& console, Action& action);
void add_run_command(CLI::App& app, Console& console, Action& action);

} // namespace host
