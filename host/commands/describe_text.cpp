// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_text.h"

#include "host/commands/describe_json.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/utf8.h>
#include <core/strings/term.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace host::describe {

using namespace core;

namespace {

using Json = nlohmann::ordered_json;

/// The types by name; what is not known may be anything.
std::string any_or(const Kinds& kinds, Language language) {
    if (kinds.empty())
        return message("IDS_HOST_ANY_VALUE");
    std::string text;
    for (const Names& names : kinds)
        text.append(text.empty() ? "" : ", ").append(in_language(names, language));
    return text;
}

std::string in_parentheses(const std::string& text) {
    return '(' + text + ')';
}

std::string result_text(const Method& method, Language language) {
    if (!method.isFunction)
        return {};
    return "-> " + any_or(method.kinds, language);
}

void write_properties(Console& console, const TypeReport& report) {
    Columns columns;
    for (const Property& property : report.members.properties) {
        std::vector<std::string> row{property.names.english, property.names.russian};
        if (report.isEnumeration) {
            row.push_back(in_language(property.summary, console.language));
            columns.add(std::move(row));
            continue;
        }
        row.push_back(any_or(property.kinds, console.language));
        row.push_back(property.writable ? "" : message("IDS_HOST_READ_ONLY"));
        columns.add(std::move(row), in_language(property.summary, console.language));
    }
    columns.write(console.out, "  ");
}

void write_methods(Console& console, const std::vector<Method>& methods, std::string_view indent) {
    Columns columns;
    for (const Method& method : methods) {
        columns.add({method.names.english, method.names.russian,
                     in_parentheses(in_language(method.parametersText, console.language)),
                     result_text(method, console.language)},
                    in_language(method.summary, console.language));
    }
    columns.write(console.out, indent);
}

/// As in "Index, Column".
std::string arguments_text(const Event& event, Language language) {
    std::string text;
    for (const Event::Argument& argument : event.arguments) {
        const std::string& name = in_language(argument.names, language);
        text.append(text.empty() ? "" : ", ").append(name.empty() ? any_or(argument.kinds, language) : name);
    }
    return text;
}

/// The events, as in "RowChanged  ПриИзмененииСтроки  (Index, Column)".
void write_events(Console& console, const std::vector<Event>& events) {
    Columns columns;
    for (const Event& event : events) {
        columns.add({event.names.english, event.names.russian,
                     in_parentheses(arguments_text(event, console.language))},
                    in_language(event.summary, console.language));
    }
    columns.write(console.out, "  ");
}

/// As in "(Path, [Encoding])", else how many arguments make a new value: "0", "0..32", "1...".
std::string constructor_text(const TypeReport& report, Language language) {
    if (const std::string& names = in_language(report.constructorParameters, language); !names.empty())
        return names;
    const auto [least, most] = report.arguments;
    std::string count = std::to_string(least);
    if (most < 0)
        count += "...";
    else if (most > least)
        count += ".." + std::to_string(most);
    return message("IDS_HOST_ARGUMENTS", {from_utf8(count)});
}

void write_sentence(Console& console, const Names& summary) {
    if (const std::string& text = in_language(summary, console.language); !text.empty())
        console.out << text << '\n';
}

// One thing alone: how it is written in either language, and what it is.

void write_alone(Console& console, const Names& owner, const Property& property) {
    const auto name = [](const std::string& of, const std::string& what) {
        return of.empty() ? what : of + '.' + what;
    };
    console.out << name(owner.english, property.names.english) << '\n'
                << name(owner.russian, property.names.russian) << '\n'
                << any_or(property.kinds, console.language);
    if (!property.writable)
        console.out << ", " << message("IDS_HOST_READ_ONLY");
    console.out << '\n';
    write_sentence(console, property.summary);
}

void write_alone(Console& console, const Names& owner, const Method& method) {
    for (const Language language : {Language::english, Language::russian}) {
        const std::string& of = in_language(owner, language);
        console.out << (of.empty() ? of : of + '.') << in_language(method.names, language)
                    << in_parentheses(in_language(method.parametersText, language))
                    << (method.isFunction ? ' ' + result_text(method, language) : "") << '\n';
    }
    write_sentence(console, method.summary);
}

void write_alone(Console& console, const Names& owner, const Event& event) {
    for (const Language language : {Language::english, Language::russian})
        console.out << in_language(owner, language) << '.' << in_language(event.names, language)
                    << in_parentheses(arguments_text(event, language)) << '\n';
    write_sentence(console, event.summary);
}

} // namespace

void write_list(Console& console, const std::vector<IType*>& types) {
    Json all = Json::array();
    Columns columns;
    for (const IType* const type : types) {
        const std::string english = to_utf8(type->name(kEnglish));
        const std::string russian = to_utf8(type->name(kRussian));
        const std::string presentation = to_utf8(type->presentation());
        if (console.json)
            all.push_back({{"name", to_json(Names{english, russian})},
                           {"id", to_utf8(to_string(type->id()))},
                           {"presentation", presentation}});
        else
            columns.add({english, russian, presentation});
    }
    if (console.json)
        console.out << all.dump(2) << '\n';
    else
        columns.write(console.out, "");
}

void write_modules(Console& console, const std::vector<ModuleReport>& modules) {
    Json all = Json::array();
    Columns columns;
    const auto text = [](auto number) { return from_utf8(std::to_string(number)); };
    for (const ModuleReport& module : modules) {
        const ModuleInfo& info = module.info;
        all.push_back({{"name", info.name},
                       {"version", info.version},
                       {"interface", info.interfaceVersion},
                       {"file", info.file},
                       {"classes", module.classes}});
        columns.add({info.name, info.version,
                     message("IDS_HOST_MODULE_INTERFACE", {text(info.interfaceVersion)}),
                     message("IDS_HOST_MODULE_CLASSES", {text(module.classes.size())}), info.file});
    }
    if (console.json) {
        console.out << all.dump(2) << '\n';
        return;
    }
    columns.write(console.out, "");
    for (const ModuleReport& module : modules) {
        if (!module.info.leaves)
            continue;
        console.out << '\n' << module.info.name << '\n';
        for (const std::string& name : module.classes)
            console.out << "  " << name << '\n';
    }
}

void write_type(Console& console, const TypeReport& report, const Method* function) {
    const bool isMade = report.arguments.least >= 0;
    if (console.json) {
        Json all = to_json(report);
        if (function != nullptr)
            all["function"] = to_json(*function);
        console.out << all.dump(2) << '\n';
        return;
    }
    write_sentence(console, report.summary);
    Columns columns;
    columns.add({message("IDS_HOST_TYPE"), report.names.english + " / " + report.names.russian});
    columns.add({message("IDS_HOST_TYPE_ID"), report.id});
    if (isMade)
        columns.add({"New / Новый", constructor_text(report, console.language)},
                    in_language(report.constructorSummary, console.language));
    if (report.members.isCollection)
        columns.add({message("IDS_HOST_ELEMENTS"), any_or(report.members.elements, console.language)});
    columns.write(console.out, "");
    if (!report.members.properties.empty()) {
        console.out << '\n'
                    << message(report.isEnumeration ? "IDS_HOST_VALUES" : "IDS_HOST_PROPERTIES") << '\n';
        write_properties(console, report);
    }
    if (!report.members.methods.empty()) {
        console.out << '\n' << message("IDS_HOST_METHODS") << '\n';
        write_methods(console, report.members.methods, "  ");
    }
    if (!report.members.events.empty()) {
        console.out << '\n' << message("IDS_HOST_EVENTS") << '\n';
        write_events(console, report.members.events);
    }
    if (!report.members.known)
        console.out << '\n' << message("IDS_HOST_NO_DEFINITION") << '\n';
    if (function != nullptr) {
        console.out << '\n' << message("IDS_HOST_FUNCTION") << '\n';
        write_methods(console, {*function}, "  ");
    }
}

void write_member(Console& console, const Names& owner, const Member& member) {
    if (console.json)
        console.out << to_json(owner, member).dump(2) << '\n';
    else
        std::visit([&](const auto* found) { write_alone(console, owner, *found); }, member);
}

void write_functions(Console& console, const std::vector<Method>& functions) {
    if (console.json)
        console.out << to_json(functions).dump(2) << '\n';
    else
        write_methods(console, functions, "");
}

} // namespace host::describe
