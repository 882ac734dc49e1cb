// SPDX-License-Identifier: Apache-2.0
#include "host/program.h"

#include "host/commands/commands.h"

#include <core/runtime/exceptions.h>
#include <host/host_process.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <map>
#include <ostream>

namespace host {
namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 the answer is no, 2 usage, 3 malformed input or a script error, "
    "4 input or output failed, 70 internal fault.";

ExitCode fail(Console& console, const char* what, ExitCode code) {
    console.err << "corehost: " << what << '\n';
    return code;
}

ExitCode parse_and_run(std::vector<std::string> arguments, Console& console) {
    CLI::App app("Runs scripts on the core library, and looks into its data.", "corehost");
    app.set_version_flag("--version", "corehost " CORE_VERSION);
    app.footer(kExitCodes);
    app.require_subcommand(1);
    app.add_flag("--json", console.json, "Write data as JSON, for programs");
    app.add_option("--lang", console.language, "Language of messages; default: the environment's")
        ->type_name("en|ru")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, Language>{{"en", Language::english}, {"ru", Language::russian}}));
    Action action;
    add_container_command(app, console, action);
    add_run_command(app, console, action);
    try {
        std::reverse(arguments.begin(), arguments.end()); // the order that CLI11 wants
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& e) {
        return app.exit(e, console.out, console.err) == 0 ? ExitCode::done : ExitCode::usage;
    }
    core::Settings settings;
    settings.locale = core::Locale(console.language == Language::russian ? "ru" : "en");
    const HostProcess process(settings);
    try {
        return action();
    } catch (const core::FileException& e) {
        return fail(console, e.what(), ExitCode::io);
    } catch (const core::Exception& e) {
        return fail(console, e.what(), ExitCode::malformed);
    }
}

} // namespace

ExitCode run_program(std::vector<std::string> arguments, Console& console) {
    ExitCode code = ExitCode::internal;
    try {
        code = parse_and_run(std::move(arguments), console);
    } catch (const std::exception& e) {
        return fail(console, e.what(), ExitCode::internal);
    }
    if (!console.out.flush())
        return fail(console, "the output could not be written", ExitCode::io);
    return code;
}

} // namespace host
