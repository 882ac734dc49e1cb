// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/describe_text.h"

#include <core/runtime/exception.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/script/console.h>
#include <core/strings/nearest.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <ostream>

namespace host {
namespace {

using namespace core;

/// The name of a type that was probably meant; empty when none is near.
wstring nearest(const std::vector<IType*>& types, wstring_view name) {
    NearestName near(name);
    for (const IType* const type : types) {
        for (const int alias : {kEnglish, kRussian})
            near.add(type->name(alias));
    }
    return near.best();
}

ExitCode describe_type(const std::string& text, Console& console) {
    auto& service = require_service<ITypeValueService>();
    const wstring name = from_utf8(text);
    if (IType* const type = service.findType(name)) {
        describe::write_type(console, describe::report_on(*type, alias_of(console.language)));
        return ExitCode::done;
    }
    wstring message = message_text("IDS_HOST_UNKNOWN_TYPE", {name});
    if (const wstring meant = nearest(service.types(), name); !meant.empty())
        message += u' ' + message_text("IDS_HOST_DID_YOU_MEAN", {meant});
    return fail(console, message, ExitCode::no);
}

ExitCode describe_functions(Console& console) {
    std::vector<describe::Method> functions;
    const script::Engine engine;
    const auto contexts = script::globals(engine);
    for (auto context = contexts.rbegin(); context != contexts.rend(); ++context) {
        describe::Members members = describe::members_of(**context, alias_of(console.language));
        std::move(members.methods.begin(), members.methods.end(), std::back_inserter(functions));
    }
    describe::write_functions(console, functions);
    return ExitCode::done;
}

} // namespace

void add_describe_command(CLI::App& app, Console& console, Action& action) {
    auto* const command =
        app.add_subcommand("describe", help(console, "Show what scripts can work with: types and functions",
                                            "Показать, с чем работают скрипты: типы и функции"));
    const auto type = std::make_shared<std::string>();
    const auto functions = std::make_shared<bool>(false);
    const auto modules = std::make_shared<bool>(false);
    const auto locales = std::make_shared<bool>(false);
    auto* const name =
        command->add_option("type", *type,
                            help(console, "A type, by its name in either language; default: list all",
                                 "Тип по имени на любом из языков; по умолчанию все"));
    command
        ->add_flag("--functions", *functions,
                   help(console, "The functions that scripts call without an object",
                        "Функции, которые скрипты вызывают без объекта"))
        ->excludes(name);
    command
        ->add_flag("--modules", *modules,
                   help(console, "The modules: the library, the program's own and those loaded",
                        "Модули: библиотека, модуль программы и загруженные"))
        ->excludes(name);
    command
        ->add_flag("--locales", *locales,
                   help(console, "The locales: key, name, and name in their own language",
                        "Локали: ключ, название и название на их языке"))
        ->excludes(name);
    command->callback([type, functions, modules, locales, &console, &action] {
        action = [type, functions, modules, locales, &console] {
            if (*locales) {
                describe::write_locales(console);
                return ExitCode::done;
            }
            if (*modules) {
                describe::write_modules(console, describe::module_reports());
                return ExitCode::done;
            }
            if (*functions)
                return describe_functions(console);
            if (!type->empty())
                return describe_type(*type, console);
            describe::write_list(console, require_service<ITypeValueService>().types());
            return ExitCode::done;
        };
    });
}

} // namespace host
