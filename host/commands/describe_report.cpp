// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_report.h"

#include "host/commands/describe_sample.h"

#include <core/context/event_source.h>
#include <core/context/summary.h>
#include <core/objects/enumeration.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/script/console.h>
#include <core/strings/compare.h>
#include <core/strings/split.h>
#include <core/strings/term.h>
#include <core/strings/trim.h>
#include <core/values/type_service.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace host::describe {

using namespace core;

namespace {

std::string text_of(const wchar* name) {
    return name != nullptr ? to_utf8(name) : std::string();
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

/// Texts come in the language of the thread, which is that of the settings again behind it.
class ThreadSpeaks {
  public:
    explicit ThreadSpeaks(const Locale& locale) { Thread::setResourceLocale(locale); }
    ThreadSpeaks(const ThreadSpeaks&) = delete;
    ThreadSpeaks& operator=(const ThreadSpeaks&) = delete;
    ~ThreadSpeaks() { Thread::setResourceLocale(Locale()); }
};

/// A text in both languages: `text` is given a locale and the alias of its names.
template <class Text>
Names in_both(Text text) {
    const auto spoken = [&text](const char* language, int alias) {
        const Locale locale(language);
        const ThreadSpeaks speaks(locale);
        return to_utf8(text(locale, alias));
    };
    return {spoken("en", kEnglish), spoken("ru", kRussian)};
}

/// The sentence of a member; without a type, that of a function.
Names summary_of(const IType* type, const std::string& member) {
    return in_both([&](const Locale& locale, int) {
        const wstring name = from_utf8(member);
        return type != nullptr ? member_summary(*type, name, locale) : function_summary(name, locale);
    });
}

/// The parameters of New as the module of the type lists them, "Path, Encoding", with brackets around those
/// that may be left out.
Names parameters_of_new(const IType& type) {
    return in_both([&type](const Locale& locale, int) {
        const wstring list = member_summary(type, u"New_Parameters", locale);
        wstring text;
        std::int32_t count = 0;
        for (const wstring_view item : string_tokenize(list, u",")) {
            const wstring name(trim_all(item));
            const bool optional = ++count > type.arguments().least && name != u"…";
            text += (text.empty() ? u"(" : u", ") + (optional ? u'[' + name + u']' : name);
        }
        return text.empty() ? text : text + u')';
    });
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
    Method result{
        .names = {text_of(definition.getMethodName(method, kEnglish)),
                  text_of(definition.getMethodName(method, kRussian))},
        .parameters = {},
        .parametersText = in_both([&](const Locale&, int language) {
            return script::display_parameters(definition, method, language);
        }),
        .isFunction = definition.hasRetVal(method),
        .kinds = {},
        .summary = {},
    };
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
        {text_of(source.getEventName(number, kEnglish)), text_of(source.getEventName(number, kRussian))},
        {},
        {}};
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

/// The members of the objects of a type; without a type, those that need no object.
Members members_of(IContextDef& definition, const IType* type, int alias) {
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
                                      {},
                                      {}});
        if (ext && ext->getPropInfo(prop, info))
            members.properties.back().kinds = kinds_of(info);
    }
    for (int method = 0; method < definition.getNMethods(); ++method)
        members.methods.push_back(method_of(definition, ext.get(), method, alias));
    const InterfacePtr<IEventSource> source(&definition);
    for (int event = 0; source && event < source->getNEvents(); ++event)
        members.events.push_back(event_of(*source, event));
    const auto summarize = [type](auto& all) {
        for (auto& member : all)
            member.summary = summary_of(type, member.names.english);
    };
    summarize(members.properties);
    summarize(members.methods);
    summarize(members.events);
    return members;
}

/// The values of an enumeration say themselves what they are.
void present_values(IContext_& enumeration, std::vector<Property>& values) {
    GenericValue value;
    for (std::size_t i = 0; i < values.size(); ++i) {
        enumeration.getPropVal(static_cast<int>(i), value);
        values[i].summary = in_both([&value](const Locale&, int) { return value.presentation(); });
    }
}

} // namespace

Names names_of(const IType& type) {
    return {text_of(type.name(kEnglish)), text_of(type.name(kRussian))};
}

bool is_name(const Names& names, const std::string& text) {
    const wstring wanted = from_utf8(text);
    return compare_nocase(from_utf8(names.english), wanted) == 0 ||
           compare_nocase(from_utf8(names.russian), wanted) == 0;
}

const std::string& in_language(const Names& names, Language language) {
    return language == Language::russian ? names.russian : names.english;
}

std::optional<Member> find_member(const Members& members, const std::string& name) {
    std::optional<Member> found;
    const auto look = [&](const auto& all) {
        const auto member =
            std::ranges::find_if(all, [&name](const auto& one) { return is_name(one.names, name); });
        if (!found && member != all.end())
            found = &*member;
    };
    look(members.methods);
    look(members.properties);
    look(members.events);
    return found;
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
    TypeReport report{
        .names = names_of(type),
        .presentation = to_utf8(type.presentation()),
        .id = to_utf8(to_string(type.id())),
        .arguments = type.arguments(),
        .summary = in_both([&type](const Locale& locale, int) { return type_summary(type, locale); }),
        .constructorSummary = summary_of(&type, "New"),
        .constructorParameters = parameters_of_new(type),
        .members = {},
    };
    if (const InterfacePtr<IContext_> enumeration = enumeration_of(type)) {
        report.isEnumeration = true;
        report.members = members_of(*enumeration, &type, alias);
        present_values(*enumeration, report.members.properties);
        return report;
    }
    InterfacePtr<IContextDef> definition;
    if (!(type.valueClass() == kNullGuid))
        definition = create_object<IContextDef>(type.valueClass());
    if (!definition && type.code() == Type::object)
        definition = sample_of(type);
    if (definition)
        report.members = members_of(*definition, &type, alias);
    return report;
}

Members global_members(int alias) {
    Members all;
    const script::Engine engine;
    const auto contexts = script::globals(engine);
    for (auto context = contexts.rbegin(); context != contexts.rend(); ++context) {
        if (InterfacePtr<IEnumerations>(context->get()))
            continue;
        Members members = members_of(**context, nullptr, alias);
        std::ranges::move(members.properties, std::back_inserter(all.properties));
        std::ranges::move(members.methods, std::back_inserter(all.methods));
    }
    return all;
}

} // namespace host::describe
