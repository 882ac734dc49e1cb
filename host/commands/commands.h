// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <core/runtime/exception.h>
#include <core/runtime/types.h>
#include <core/script/errors.h>

#include <functional>

namespace CLI {
class App;
} // namespace CLI

/// The commands of corehost. Each adds itself to the command line, and sets `action` when the user asks for
/// it; the action runs after the command line has been read, in a process of its own.
namespace host {

using Action = std::function<ExitCode()>;

/// Shows a message in the name of the program, and returns the code.
ExitCode fail(Console& console, const core::wstring& message, ExitCode code);
/// The same with the message of an id, or what an exception says.
ExitCode fail(Console& console, const char* id, ExitCode code);
ExitCode fail(Console& console, const core::Exception& failure, ExitCode code);
/// The code of a script that failed: whether it was interrupted.
[[nodiscard]] ExitCode code_of(const core::script::Error& error) noexcept;

/// Adds a subcommand, behind which may stand what concerns every command. `run` becomes the action when the
/// user asks for it.
CLI::App* add_subcommand(CLI::App& command, const char* name, const char* what, Action& action, Action run);

/// A line of help, in the language of the console.
[[nodiscard]] inline const char* help(const Console& console, const char* english, const char* russian) {
    return console.language == Language::russian ? russian : english;
}

void add_container_command(CLI::App& app, Console& console, Action& action);
void add_describe_command(CLI::App& app, Console& console, Action& action);
void add_list_command(CLI::App& app, Console& console, Action& action);
void add_query_command(CLI::App& app, Console& console, Action& action);
void add_repl_command(CLI::App& app, Console& console, Action& action);
void add_run_command(CLI::App& app, Console& console, Action& action);
void add_settings_command(CLI::App& app, Console& console, Action& action);
void add_text_command(CLI::App& app, Console& console, Action& action);

} // namespace host
