// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/error_report.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/script_console.h"

#include <core/runtime/utf8.h>
#include <core/script/engine.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

namespace host {
namespace {

struct RunOptions {
    std::string file;
    std::vector<std::string> arguments;
    std::string encoding = "utf-8";
};

ExitCode run_file(const RunOptions& options, Console& console) {
    const std::string& file = options.file;
    const core::wstring text =
        read_text(console, file, {.encoding = core::Encoding(core::from_utf8(options.encoding))});
    try {
        const core::script::Script script = core::script::compile(text, core::from_utf8(file));
        core::script::Engine engine;
        connect(engine, console);
        std::vector<core::wstring> arguments;
        for (const std::string& argument : options.arguments)
            arguments.push_back(core::from_utf8(argument));
        engine.arguments(arguments);
        const Interrupts interrupts(&engine);
        engine.run(script);
        if (const auto code = engine.exitCode())
            return static_cast<ExitCode>(*code);
    } catch (const core::script::Error& error) {
        console.out.flush();
        show_error(console, error);
        return code_of(error);
    } catch (const std::bad_alloc&) { // for the script itself, or what stands between its statements
        return fail(console, "IDS_SCRIPT_NO_MEMORY", ExitCode::malformed);
    }
    return ExitCode::done;
}

} // namespace

void add_run_command(CLI::App& app, Console& console, Action& action) {
    auto* const command = app.add_subcommand("run", help(console, "Run a script", "Выполнить скрипт"));
    const auto options = std::make_shared<RunOptions>();
    command
        ->add_option("file", options->file,
                     help(console, "The script; - is standard input", "Скрипт; - означает стандартный ввод"))
        ->required();
    command->add_option("arguments", options->arguments,
                        help(console, "What the script reads as Arguments; behind -- whatever they are",
                             "То, что скрипт читает как Аргументы; после -- любые"));
    command
        ->add_option("--encoding", options->encoding,
                     help(console, "The encoding of the script; default: utf-8",
                          "Кодировка скрипта; по умолчанию utf-8"))
        ->type_name("ENCODING");
    command->callback([options, &console, &action] {
        action = [options, &console] { return run_file(*options, console); };
    });
}

} // namespace host
