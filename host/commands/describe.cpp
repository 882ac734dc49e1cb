// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/describe_reference.h"
#include "host/commands/describe_text.h"

#include <core/runtime/exception.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/strings/nearest.h>
#include <core/values/type_service.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <variant>

namespace host {
namespace {

using namespace core;

/// Tells that something is not there, and the name that was probably meant.
ExitCode refuse(Console& console, wstring message, const NearestName& near) {
    if (const wstring& meant = near.best(); !meant.empty())
        message += u' ' + message_text("IDS_DID_YOU_MEAN", {meant});
    return fail(console, message, ExitCode::no);
}

void add_names(NearestName& near, const describe::Names& names) {
    near.add(from_utf8(names.english));
    near.add(from_utf8(names.russian));
}

ExitCode refuse_name(Console& console, const std::string& name, const describe::Members& globals) {
    const wstring text = from_utf8(name);
    NearestName near(text);
    for (const IType* const type : require_service<ITypeValueService>().types())
        add_names(near, describe::names_of(*type));
    for (const describe::Method& function : globals.methods)
        add_names(near, function.names);
    return refuse(console, message_text("IDS_HOST_UNKNOWN_TYPE", {text}), near);
}

/// The name of a type, or of what stands without an object.
ExitCode describe_name(const std::string& name, Console& console) {
    const int alias = alias_of(console.language);
    const describe::Members globals = describe::global_members(alias);
    const auto global = describe::find_member(globals, name);
    if (IType* const type = require_service<ITypeValueService>().findType(from_utf8(name))) {
        const auto* const function = global ? std::get_if<const describe::Method*>(&*global) : nullptr;
        describe::write_type(console, describe::report_on(*type, alias),
                             function != nullptr ? *function : nullptr);
        return ExitCode::done;
    }
    if (!global)
        return refuse_name(console, name, globals);
    describe::write_member(console, {}, *global);
    return ExitCode::done;
}

ExitCode describe_member(IType& type, const std::string& name, Console& console) {
    const describe::TypeReport report = describe::report_on(type, alias_of(console.language));
    if (const auto member = describe::find_member(report.members, name)) {
        describe::write_member(console, report.names, *member);
        return ExitCode::done;
    }
    const wstring text = from_utf8(name);
    NearestName near(text);
    const auto add = [&near](const auto& all) {
        for (const auto& one : all)
            add_names(near, one.names);
    };
    add(report.members.properties);
    add(report.members.methods);
    add(report.members.events);
    return refuse(console,
                  message_text("IDS_HOST_UNKNOWN_MEMBER", {type.name(alias_of(console.language)), text}),
                  near);
}

/// What is asked for, as in "ValueTable", "ValueTable.GroupBy", "Round".
ExitCode describe_any(const std::string& text, Console& console) {
    const std::size_t dot = text.find('.');
    if (dot == std::string::npos)
        return describe_name(text, console);
    const std::string owner = text.substr(0, dot);
    if (IType* const type = require_service<ITypeValueService>().findType(from_utf8(owner)))
        return describe_member(*type, text.substr(dot + 1), console);
    return refuse_name(console, owner, {});
}

} // namespace

void add_describe_command(CLI::App& app, Console& console, Action& action) {
    struct Options {
        std::string name;
        bool functions = false;
        bool modules = false;
        bool locales = false;
        std::string reference;
    };
    auto* const command =
        app.add_subcommand("describe", help(console, "Show what scripts can work with: types and functions",
                                            "Показать, с чем работают скрипты: типы и функции"));
    const auto options = std::make_shared<Options>();
    auto* const name = command->add_option(
        "name", options->name,
        help(console,
             "A type, a member as Type.Member, or a function, in either language; default: all types",
             "Тип, член в виде Тип.Член или функция на любом из языков; по умолчанию все типы"));
    command
        ->add_flag("--functions", options->functions,
                   help(console, "The functions that scripts call without an object",
                        "Функции, которые скрипты вызывают без объекта"))
        ->excludes(name);
    command
        ->add_flag("--modules", options->modules,
                   help(console, "The modules: the library, the program's own and those loaded",
                        "Модули: библиотека, модуль программы и загруженные"))
        ->excludes(name);
    command
        ->add_flag("--locales", options->locales,
                   help(console, "The locales: key, name, and name in their own language",
                        "Локали: ключ, название и название на их языке"))
        ->excludes(name);
    command
        ->add_option("--reference", options->reference,
                     help(console, "Write a page for each type and one for the functions, in both languages",
                          "Записать по странице для каждого типа и одну для функций, на обоих языках"))
        ->type_name("FOLDER")
        ->excludes(name);
    command->callback([options, &console, &action] {
        action = [options, &console] {
            if (!options->reference.empty())
                describe::write_reference(options->reference);
            else if (options->locales)
                describe::write_locales(console);
            else if (options->modules)
                describe::write_modules(console, describe::module_reports());
            else if (options->functions)
                describe::write_functions(console,
                                          describe::global_members(alias_of(console.language)).methods);
            else if (!options->name.empty())
                return describe_any(options->name, console);
            else
                describe::write_list(console, require_service<ITypeValueService>().types());
            return ExitCode::done;
        };
    });
}

} // namespace host
