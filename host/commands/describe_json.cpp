// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_json.h"

#include <nlohmann/json.hpp>

#include <type_traits>

namespace host::describe {
namespace {

using Json = nlohmann::ordered_json;

Json to_json(const Kinds& kinds) {
    Json all = Json::array();
    for (const Names& names : kinds)
        all.push_back(names.english);
    return all;
}

/// What has no sentence has no such key.
void add_summary(Json& json, const char* key, const Names& summary) {
    if (!summary.english.empty())
        json[key] = describe::to_json(summary);
}

Json to_json(const Property& property) {
    Json json = {{"name", describe::to_json(property.names)},
                 {"readable", property.readable},
                 {"writable", property.writable},
                 {"types", to_json(property.kinds)}};
    add_summary(json, "description", property.summary);
    return json;
}

Json to_json(const Event& event) {
    Json parameters = Json::array();
    for (const Event::Argument& argument : event.arguments) {
        parameters.push_back({{"types", to_json(argument.kinds)}});
        if (!argument.names.english.empty())
            parameters.back()["name"] = describe::to_json(argument.names);
    }
    Json json = {{"name", describe::to_json(event.names)}, {"parameters", std::move(parameters)}};
    add_summary(json, "description", event.summary);
    return json;
}

template <class T>
Json array_of(const std::vector<T>& all) {
    Json json = Json::array();
    for (const T& one : all)
        json.push_back(to_json(one));
    return json;
}

} // namespace

Json to_json(const Names& names) {
    return {{"en", names.english}, {"ru", names.russian}};
}

Json to_json(const Method& method) {
    Json parameters = Json::array();
    for (const Parameter& parameter : method.parameters) {
        parameters.push_back({{"in", parameter.in}, {"out", parameter.out}});
        if (!parameter.names.english.empty())
            parameters.back()["name"] = to_json(parameter.names);
        if (parameter.byDefault)
            parameters.back()["default"] = *parameter.byDefault;
    }
    Json json = {{"name", to_json(method.names)},
                 {"parameters", std::move(parameters)},
                 {"function", method.isFunction},
                 {"types", to_json(method.kinds)}};
    add_summary(json, "description", method.summary);
    return json;
}

Json to_json(const std::vector<Method>& methods) {
    return array_of(methods);
}

Json to_json(const TypeReport& report) {
    Json all = {{"name", to_json(report.names)}, {"id", report.id}, {"presentation", report.presentation}};
    add_summary(all, "description", report.summary);
    if (report.arguments.least >= 0) {
        Json& constructor = all["constructor"] = {{"least", report.arguments.least}};
        if (report.arguments.most >= 0)
            constructor["most"] = report.arguments.most;
        add_summary(constructor, "parameters", report.constructorParameters);
        add_summary(constructor, "description", report.constructorSummary);
    }
    all["enumeration"] = report.isEnumeration;
    if (report.members.isCollection)
        all["elements"] = to_json(report.members.elements);
    all["known"] = report.members.known;
    all["properties"] = array_of(report.members.properties);
    all["methods"] = array_of(report.members.methods);
    all["events"] = array_of(report.members.events);
    return all;
}

Json to_json(const Names& owner, const Member& member) {
    Json all;
    if (!owner.english.empty())
        all["type"] = to_json(owner);
    std::visit(
        [&](const auto* found) {
            using Kind = std::remove_cvref_t<decltype(*found)>;
            const char* const call = owner.english.empty() ? "function" : "method";
            all["kind"] = std::is_same_v<Kind, Property> ? "property"
                          : std::is_same_v<Kind, Event>  ? "event"
                                                         : call;
            all.update(to_json(*found));
        },
        member);
    return all;
}

} // namespace host::describe
