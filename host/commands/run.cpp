// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/interrupt_scope.h"
#include "host/language/interpreter.h"
#include "host/language/parser.h"
#include "host/library/functions.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/error_report.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <new>
#include <ostream>
#include <string>

namespace host {
namespace {

ExitCode run_file(const std::string& file, Console& console) {
    const auto source = std::make_shared<const script::Source>(file, read_text(console, file));
    try {
        script::Variables variables;
        const script::Program program = script::parse(source, variables);
        script::Interpreter interpreter(script::create_globals(console), variables);
        const script::InterruptScope interrupts(interpreter);
        interpreter.run(program);
    } catch (const script::ScriptError& error) {
        console.out.flush();
        script::show_error(console.err, *source, error, console.colour);
        return ExitCode::malformed;
    } catch (const std::bad_alloc&) { // for the script itself, or what stands between its statements
        return fail(console, core::message_text("IDS_SCRIPT_NO_MEMORY"), ExitCode::malformed);
    }
    return ExitCode::done;
}

} // namespace

void add_run_command(CLI::App& app, Console& console, Action& action) {
    auto* const command = app.add_subcommand("run", "Run a script");
    const auto file = std::make_shared<std::string>();
    command->add_option("file", *file, "The script; - is standard input")->required();
    command->callback(
        [file, &console, &action] { action = [file, &console] { return run_file(*file, console); }; });
}

} // namespace host
