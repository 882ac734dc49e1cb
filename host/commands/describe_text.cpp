// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_text.h"

#include "host/terminal/text_columns.h"

#include <core/runtime/utf8.h>
#include <core/strings/term.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace host::describe {

using namespace core;

namespace {

using Json = nlohmann::ordered_json;

// as text

const std::string& in_language(const Names& names, Language language) {
    return language == Language::russian ? names.russian : names.english;
}

/// The types by name; what is not known may be anything.
std::string any_or(const Kinds& kinds, Language language) {
    if (kinds.empty())
        return message("IDS_HOST_ANY_VALUE");
    std::string text;
    for (const Names& names : kinds)
        text.append(text.empty() ? "" : ", ").append(in_language(names, language));
    return text;
}

std::string result_text(const Method& method, Language language) {
    if (!method.isFunction)
        return {};
    return "-> " + any_or(method.kinds, language);
}

void write_properties(Console& console, const TypeReport& report) {
    if (report.members.properties.empty())
        return;
    console.out << '\n' << message(report.isEnumeration ? "IDS_HOST_VALUES" : "IDS_HOST_PROPERTIES") << '\n';
    Columns columns;
    for (const Property& property : report.members.properties) {
        std::vector<std::string> row{property.names.english, property.names.russian};
        if (!report.isEnumeration) {
            row.push_back(any_or(property.kinds, console.language));
            row.push_back(property.writable ? "" : message("IDS_HOST_READ_ONLY"));
        }
        columns.add(std::move(row));
    }
    columns.write(console.out, "  ");
}

void write_table(Console& console, const std::vector<Method>& methods, std::string_view indent) {
    Columns columns;
    for (const Method& method : methods) {
        columns.add({method.names.english, method.names.russian, '(' + method.parametersText + ')',
                     result_text(method, console.language)});
    }
    columns.write(console.out, indent);
}

/// The events, as in "RowChanged  ПриИзмененииСтроки  (Index, Column)".
void write_events(Console& console, const std::vector<Event>& events) {
    Columns columns;
    for (const Event& event : events) {
        std::string arguments;
        for (const Event::Argument& argument : event.arguments) {
            const std::string& name = in_language(argument.names, console.language);
            arguments += arguments.empty() ? "" : ", ";
            arguments += name.empty() ? any_or(argument.kinds, console.language) : name;
        }
        columns.add({event.names.english, event.names.russian, '(' + arguments + ')'});
    }
    columns.write(console.out, "  ");
}

/// As in "0", "0..32", "1...": how many arguments make a new value.
std::string constructor_text(const TypeReport& report) {
    const auto [least, most] = report.arguments;
    std::string count = std::to_string(least);
    if (most < 0)
        count += "...";
    else if (most > least)
        count += ".." + std::to_string(most);
    return message("IDS_HOST_ARGUMENTS", {from_utf8(count)});
}

// as JSON

Json to_json(const Names& names) {
    return {{"en", names.english}, {"ru", names.russian}};
}

Json to_json(const Kinds& kinds) {
    Json all = Json::array();
    for (const Names& names : kinds)
        all.push_back(names.english);
    return all;
}

Json to_json(const std::vector<Property>& properties) {
    Json all = Json::array();
    for (const Property& property : properties) {
        all.push_back({{"name", to_json(property.names)},
                       {"readable", property.readable},
                       {"writable", property.writable},
                       {"types", to_json(property.kinds)}});
    }
    return all;
}

Json to_json(const std::vector<Event>& events) {
    Json all = Json::array();
    for (const Event& event : events) {
        Json parameters = Json::array();
        for (const Event::Argument& argument : event.arguments) {
            parameters.push_back({{"types", to_json(argument.kinds)}});
            if (!argument.names.english.empty())
                parameters.back()["name"] = to_json(argument.names);
        }
        all.push_back({{"name", to_json(event.names)}, {"parameters", std::move(parameters)}});
    }
    return all;
}

Json to_json(const std::vector<Method>& methods) {
    Json all = Json::array();
    for (const Method& method : methods) {
        Json parameters = Json::array();
        for (const Parameter& parameter : method.parameters) {
            parameters.push_back({{"in", parameter.in}, {"out", parameter.out}});
            if (!parameter.names.english.empty())
                parameters.back()["name"] = to_json(parameter.names);
            if (parameter.byDefault)
                parameters.back()["default"] = *parameter.byDefault;
        }
        all.push_back({{"name", to_json(method.names)},
                       {"parameters", std::move(parameters)},
                       {"function", method.isFunction},
                       {"types", to_json(method.kinds)}});
    }
    return all;
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

void write_type(Console& console, const TypeReport& report) {
    const bool isMade = report.arguments.least >= 0;
    if (console.json) {
        Json all = {
            {"name", to_json(report.names)}, {"id", report.id}, {"presentation", report.presentation}};
        if (isMade) {
            all["constructor"] = {{"least", report.arguments.least}};
            if (report.arguments.most >= 0)
                all["constructor"]["most"] = report.arguments.most;
        }
        all["enumeration"] = report.isEnumeration;
        if (report.members.isCollection)
            all["elements"] = to_json(report.members.elements);
        all["known"] = report.members.known;
        all["properties"] = to_json(report.members.properties);
        all["methods"] = to_json(report.members.methods);
        all["events"] = to_json(report.members.events);
        console.out << all.dump(2) << '\n';
        return;
    }
    Columns columns;
    columns.add({message("IDS_HOST_TYPE"), report.names.english + " / " + report.names.russian});
    columns.add({message("IDS_HOST_TYPE_ID"), report.id});
    if (isMade)
        columns.add({"New / Новый", constructor_text(report)});
    if (report.members.isCollection)
        columns.add({message("IDS_HOST_ELEMENTS"), any_or(report.members.elements, console.language)});
    columns.write(console.out, "");
    write_properties(console, report);
    if (!report.members.methods.empty()) {
        console.out << '\n' << message("IDS_HOST_METHODS") << '\n';
        write_table(console, report.members.methods, "  ");
    }
    if (!report.members.events.empty()) {
        console.out << '\n' << message("IDS_HOST_EVENTS") << '\n';
        write_events(console, report.members.events);
    }
    if (!report.members.known)
        console.out << '\n' << message("IDS_HOST_NO_DEFINITION") << '\n';
}

void write_functions(Console& console, const std::vector<Method>& functions) {
    if (console.json)
        console.out << to_json(functions).dump(2) << '\n';
    else
        write_table(console, functions, "");
}

} // namespace host::describe
