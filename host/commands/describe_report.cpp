// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_report.h"

#include "host/commands/describe_sample.h"

#include <core/context/event_source.h>
#include <core/objects/enumeration.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/script/console.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <algorithm>

namespace host::describe {

using namespace core;

namespace {

std::string text_of(const wchar* name) {
    return name != nullptr ? to_utf8(name) : std::string();
}

Names names_of(const IType& type) {
    return {text_of(type.name(kEnglish)), text_of(type.name(kRussian))};
}

Kinds kinds_of(const ContextValueInfo& info) {
    Kinds kinds;
    auto& service = require_service<ITypeValueService>();
    for (const GUID& id : info.types.types()) {
        if (const IType* const type = service.findType(id))
            kinds.push_back(names_of(*type));
    }
    return kinds;
}

/// The enumeration whose values have this type, or null.
InterfacePtr<IContext_> enumeration_of(const IType& type) {
    auto* const all = get_service<IEnumerations>();
    const int prop = all != nullptr ? all->findProp(type.name(kEnglish)) : -1;
    if (prop < 0)
        return {};
    GenericValue value;
    all->getPropVal(prop, value);
    const auto enumeration = value.query<IEnumeration>();
    return enumeration && enumeration->valueType()->id() == type.id() ? value.query<IContext_>()
                                                                      : InterfacePtr<IContext_>();
}

Method method_of(IContextDef& definition, const IContextDefExt* ext, int method, int alias) {
    Method result{{text_of(definition.getMethodName(method, kEnglish)),
                   text_of(definition.getMethodName(method, kRussian))},
                  {},
                  to_utf8(script::display_parameters(definition, method, alias)),
                  definition.hasRetVal(method),
                  {}};
    const InterfacePtr<IContextDefParams> named(&definition);
    for (int param = 0; param < definition.getNParams(method); ++param) {
        Parameter parameter{
            {}, definition.isParamIn(method, param), definition.isParamOut(method, param), {}};
        if (named) {
            parameter.names = {text_of(named->getParamName(method, param, kEnglish)),
                               text_of(named->getParamName(method, param, kRussian))};
        }
        GenericValue value;
        if (definition.getParamDefValue(method, param, &value))
            parameter.byDefault = to_utf8(script::display(value, alias));
        result.parameters.push_back(std::move(parameter));
    }
    ContextValueInfo info;
    if (ext != nullptr && ext->getMethodReturnInfo(method, info))
        result.kinds = kinds_of(info);
    return result;
}

Event event_of(const IEventSource& source, int number) {
    Event event{
        {text_of(source.getEventName(number, kEnglish)), text_of(source.getEventName(number, kRussian))}, {}};
    for (int param = 0; param < source.getNEventParams(number); ++param) {
        event.arguments.push_back({{text_of(source.getEventParamName(number, param, kEnglish)),
                                    text_of(source.getEventParamName(number, param, kRussian))},
                                   {}});
        ContextValueInfo info;
        if (source.getEventParamInfo(number, param, info))
            event.arguments.back().kinds = kinds_of(info);
    }
    return event;
}

} // namespace

Members members_of(IContextDef& definition, int alias) {
    Members members;
    members.known = true;
    const InterfacePtr<IContextDefExt> ext(&definition);
    ContextValueInfo info;
    members.isCollection = ext && ext->isCollection();
    if (members.isCollection && ext->getCollectionItemInfo(info))
        members.elements = kinds_of(info);
    for (int prop = 0; prop < definition.getNProps(); ++prop) {
        members.properties.push_back({{text_of(definition.getPropName(prop, kEnglish)),
                                       text_of(definition.getPropName(prop, kRussian))},
                                      definition.isPropReadable(prop),
                                      definition.isPropWritable(prop),
                                      {}});
        if (ext && ext->getPropInfo(prop, info))
            members.properties.back().kinds = kinds_of(info);
    }
    for (int method = 0; method < definition.getNMethods(); ++method)
        members.methods.push_back(method_of(definition, ext.get(), method, alias));
    const InterfacePtr<IEventSource> source(&definition);
    for (int event = 0; source && event < source->getNEvents(); ++event)
        members.events.push_back(event_of(*source, event));
    return members;
}

std::vector<ModuleReport> module_reports() {
    std::vector<ModuleReport> reports;
    for (const SCOM_Module* const module : registered_modules()) {
        std::vector<std::string> classes;
        for (const ClassRecord& record : module->classTable()) {
            if (record.name != nullptr)
                classes.emplace_back(record.name);
        }
        std::ranges::sort(classes);
        // A class and its type have one name, as have the parts of an enumeration.
        classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
        reports.push_back({module->info(), std::move(classes)});
    }
    return reports;
}

TypeReport report_on(IType& type, int alias) {
    TypeReport report{names_of(type),
                      to_utf8(type.presentation()),
                      to_utf8(to_string(type.id())),
                      type.arguments(),
                      false,
                      {}};
    InterfacePtr<IContextDef> definition = enumeration_of(type);
    report.isEnumeration = static_cast<bool>(definition);
    if (!definition && !(type.valueClass() == kNullGuid))
        definition = create_object<IContextDef>(type.valueClass());
    if (!definition && type.code() == Type::object)
        definition = sample_of(type);
    if (definition)
        report.members = members_of(*definition, alias);
    return report;
}

} // namespace host::describe
