// SPDX-License-Identifier: Apache-2.0
#include "host/commands/program.h"

#include "host/commands/commands.h"
#include "host/commands/help_formatter.h"
#include "host/commands/settings_at_start.h"
#include "host/commands/usage_error.h"
#include "host/terminal/console_chooser.h"
#include "host/terminal/disk_entry.h"
#include "host/terminal/error_report.h"
#include "host/terminal/uncaught_report.h"

#include <core/files/errors.h>
#include <core/profiles/errors.h>
#include <core/runtime/errors.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>
#include <core/streams/errors.h>
#include <host/host_process.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string_view>
#include <system_error>
#include <utility>

namespace host {
namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 the answer is no, 2 usage, 3 malformed input or a script error, "
    "4 input or output failed, 70 internal fault, 130 interrupted.";
constexpr const char* kOptionsRussian = "Параметры";
constexpr const char* kExitCodesRussian =
    "Коды завершения: 0 сделано, 1 ответ «нет», 2 неверная команда, 3 неверные данные или ошибка скрипта, "
    "4 ошибка ввода или вывода, 70 внутренняя ошибка, 130 прервано.";

/// Whether the file of settings cannot be had; else a path or what the file holds is refused.
bool has_no_file(const core::ProfileException& failure) {
    const std::string_view id = failure.messageId();
    return id == core::messages::kProfileBusy || id == core::messages::kProfileNoFile;
}

/// Runs the action in a process of its own, and tells what stopped it.
ExitCode carry_out(const Action& action, const std::vector<std::string>& modules, Console& console) {
    const core::Locale language(console.language == Language::russian ? "ru" : "en");
    core::Settings settings = settings_of_program();
    settings.part<core::FormatSettings>() = console.formats;
    settings.locale = console.locale.value_or(language);
    if (settings.locale.isRussian() != language.isRussian())
        settings.language = language;
    ExitCode code = ExitCode::internal;
    try {
        HostProcess process(settings);
        if (console.terminal)
            process.offerService(core::IChooser::IID, create_console_chooser(console).get());
        process.offerService(core::IUncaughtExceptions::IID, create_uncaught_report(console).get());
        for (const std::string& file : modules)
            process.loadModule(file);
        code = action();
    } catch (const core::FileException& e) {
        return fail(console, e, ExitCode::io);
    } catch (const core::FileStreamException& e) {
        return fail(console, e, ExitCode::io);
    } catch (const core::ModuleException& e) {
        const bool missing = std::string_view(e.messageId()) == core::messages::kModuleMissing;
        return fail(console, e, missing ? ExitCode::io : ExitCode::malformed);
    } catch (const core::ProfileException& e) {
        return fail(console, e, has_no_file(e) ? ExitCode::io : ExitCode::malformed);
    } catch (const core::StorageException& e) {
        const bool failed = e.kind() == core::StorageException::Kind::none; // in use, read only, full
        return fail(console, e, failed ? ExitCode::io : ExitCode::malformed);
    } catch (const core::Exception& e) {
        return fail(console, e, ExitCode::malformed);
    }
    if (!console.out.flush())
        return fail(console, "IDS_HOST_OUTPUT_FAILED", ExitCode::io);
    return code;
}

/// What is still alive when everything should be gone.
void report_leaks(std::ostream& out) {
    for (const core::LiveClass& left : core::live_report())
        out << "corehost: leak: " << left.name << ' ' << left.count << '\n';
}

Language language_of(const std::string& name) {
    if (name == "en")
        return Language::english;
    if (name == "ru")
        return Language::russian;
    throw CLI::ValidationError("--lang", name);
}

core::Locale locale_of(const std::string& key) {
    try {
        return core::Locale(key);
    } catch (const core::LocaleException&) {
        throw CLI::ValidationError("--locale", key);
    }
}

/// Whether an argument names a file; what cannot be a path does not.
bool is_file(const std::string_view argument) {
    std::error_code failure;
    return std::filesystem::is_regular_file(native_path(argument), failure);
}

core::TableForm mode_of(const std::string& name) {
    if (const auto form = core::table_form(name))
        return *form;
    throw CLI::ValidationError("--mode", name);
}

/// The help, and what is wrong with a command line, are written before that is read: in the language, and
/// for the reader, that it asks for.
void look_for_readers(const std::vector<std::string>& arguments, Console& console) {
    constexpr std::string_view kOption = "--lang";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--" || (!argument.starts_with('-') && is_file(argument)))
            return; // what follows is a script's
        console.json = console.json || argument == "--json";
        std::string_view name;
        if (argument == kOption && i + 1 < arguments.size())
            name = arguments[i + 1];
        else if (argument.starts_with(kOption) && argument.substr(kOption.size()).starts_with('='))
            name = argument.substr(kOption.size() + 1);
        if (name == "en" || name == "ru") // anything else is refused when it is read
            console.language = language_of(std::string(name));
    }
}

bool asks_for_help(std::string_view word) {
    return word == "help" || word == "справка" || word == "помощь";
}

/// `corehost FILE ARGUMENT…` is `corehost run FILE -- ARGUMENT…`: what stands behind the file is the
/// script's, and `corehost help COMMAND` is `corehost COMMAND --help`. Without any word a user at a terminal
/// gets the console, and other input is a script.
void complete_command(CLI::App& app, const Console& console, std::vector<std::string>& arguments) {
    const auto isCommand = [&app](const std::string& word) {
        return std::ranges::any_of(app.get_subcommands({}),
                                   [&](const CLI::App* command) { return command->get_name() == word; });
    };
    for (auto i = arguments.begin(); i != arguments.end(); ++i) {
        if (!i->starts_with('-') || *i == "-") {
            if (asks_for_help(*i) && !is_file(*i)) {
                arguments.erase(i);
                arguments.emplace_back("--help");
            } else if (!isCommand(*i) && (is_file(*i) || *i == "-")) {
                i = arguments.insert(i + 1, "--");
                arguments.insert(i - 1, "run");
            }
            return;
        }
        const CLI::Option* const option = app.get_option_no_throw(i->substr(0, i->find('=')));
        if (option == nullptr || option == app.get_help_ptr() || option == app.get_version_ptr())
            return; // an unknown one is refused in the name of the program, not of a command
        const bool hasValue = i->find('=') != std::string::npos;
        if (!hasValue && option->get_items_expected_min() > 0 && ++i == arguments.end())
            return; // its value is missing
    }
    if (console.terminal)
        arguments.insert(arguments.end(), "repl");
    else
        arguments.insert(arguments.end(), {"run", "-"});
}

/// The frame of the help. What is added to the program later inherits it.
void frame_help(CLI::App& app, const Console& console) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", help(console, "Show this help", "Показать эту справку"));
    app.footer(help(console, kExitCodes, kExitCodesRussian));
    if (console.language == Language::russian)
        app.option_defaults()->group(kOptionsRussian);
    app.set_version_flag("--version", "corehost " CORE_VERSION,
                         help(console, "Show the version", "Показать версию"));
    if (console.language == Language::english)
        return;
    app.group("Команды");
    for (const auto& [word, russian] :
         {std::pair{"Usage", "Вызов"}, std::pair{"OPTIONS", "ПАРАМЕТРЫ"}, std::pair{"SUBCOMMAND", "КОМАНДА"},
          std::pair{"SUBCOMMANDS", "КОМАНДЫ"}, std::pair{"Positionals", "Аргументы"},
          std::pair{"REQUIRED", "ОБЯЗАТЕЛЬНО"}, std::pair{"Excludes", "Исключает"},
          std::pair{"TEXT", "ТЕКСТ"}, std::pair{"FILE", "ФАЙЛ"}, std::pair{"KEY", "КЛЮЧ"},
          std::pair{"ENCODING", "КОДИРОВКА"}, std::pair{"LIST", "СПИСОК"}, std::pair{"CHAR", "ЗНАК"},
          std::pair{"NAME", "ИМЯ"}})
        app.get_formatter()->label(word, russian);
}

/// The option for help is in a group of its own making.
void group_help(CLI::App& app, const std::string& group) {
    app.get_help_ptr()->group(group);
    for (CLI::App* const sub : app.get_subcommands({}))
        group_help(*sub, group);
}

void add_commands(CLI::App& app, Console& console, Action& action) {
    add_container_command(app, console, action);
    add_describe_command(app, console, action);
    add_list_command(app, console, action);
    add_query_command(app, console, action);
    add_repl_command(app, console, action);
    add_run_command(app, console, action);
    add_settings_command(app, console, action);
    add_text_command(app, console, action);
}

ExitCode parse_and_run(std::vector<std::string> arguments, Console& console) {
    read_settings_at_start(console);
    look_for_readers(arguments, console);
    CLI::App app(help(console, "Runs scripts on the core library, and looks into its data.",
                      "Выполняет скрипты на базовой библиотеке и показывает её данные."),
                 "corehost");
    frame_help(app, console);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // "/a" is a path on every system
    app.fallthrough();                      // these options may stand behind the command, too
    bool leaks = false;
    std::vector<std::string> modules;
    app.add_flag("--json", console.json,
                 help(console, "Write data as JSON, for programs", "Выводить данные в JSON, для программ"));
    app.add_option_function<std::string>(
           "--mode", [&console](const std::string& name) { console.mode = mode_of(name); },
           help(console, "The form of tables that are printed", "Форма таблиц, которые печатаются"))
        ->type_name("table|csv|json|jsonl|markdown|html|list|fixed");
    app.add_flag("--leaks", leaks,
                 help(console, "At the end, report objects that are still alive: class and count",
                      "В конце показать объекты, которые ещё живы: класс и число"));
    app.add_option("--module", modules,
                   help(console, "Load a module first; may be given several times",
                        "Сначала загрузить модуль; можно указать несколько раз"))
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option_function<std::string>(
           "--lang", [&console](const std::string& name) { console.language = language_of(name); },
           help(console, "Language of messages, formats and sorting; default: the environment's",
                "Язык сообщений, форматов и сортировки; по умолчанию язык окружения"))
        ->type_name("en|ru");
    app.add_option_function<std::string>(
           "--locale", [&console](const std::string& key) { console.locale = locale_of(key); },
           help(console, "Locale of formats, sorting and names, as de_AT; default: the language's",
                "Локаль форматов, сортировки и названий, например de_AT; по умолчанию как у языка"))
        ->type_name("KEY");
    Action action;
    add_commands(app, console, action);
    if (console.language == Language::russian)
        group_help(app, kOptionsRussian);
    complete_command(app, console, arguments);
    try {
        std::reverse(arguments.begin(), arguments.end()); // the order that CLI11 wants
        app.parse(std::move(arguments));
    } catch (const CLI::Success& e) { // help and version
        app.exit(e, console.out, console.err);
        return ExitCode::done;
    } catch (const CLI::ParseError& e) {
        return refuse_usage(app, e, console);
    }
    const ExitCode code = carry_out(action, modules, console);
    if (leaks)
        report_leaks(console.err);
    return code;
}

} // namespace

CLI::App* add_subcommand(CLI::App& command, const char* name, const char* what, Action& action, Action run) {
    auto* const sub = command.add_subcommand(name, what);
    sub->fallthrough();
    sub->callback([&action, run = std::move(run)] { action = run; });
    return sub;
}

ExitCode fail(Console& console, const core::wstring& message, ExitCode code) {
    show_failure(console, message);
    return code;
}

ExitCode fail(Console& console, const char* id, ExitCode code) {
    show_failure(console, core::message_text(id), id);
    return code;
}

ExitCode fail(Console& console, const core::Exception& failure, ExitCode code) {
    show_failure(console, failure.description(), failure.messageId());
    return code;
}

ExitCode code_of(const core::script::Error& error) noexcept {
    const bool interrupted = std::string_view(error.messageId()) == core::messages::kScriptInterrupted;
    return interrupted ? ExitCode::interrupted : ExitCode::malformed;
}

ExitCode run_program(std::vector<std::string> arguments, Console& console) {
    try {
        return parse_and_run(std::move(arguments), console);
    } catch (const std::exception& e) {
        return fail(console, core::from_utf8(e.what()), ExitCode::internal);
    }
}

} // namespace host
