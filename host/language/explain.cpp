// SPDX-License-Identifier: Apache-2.0
#include "host/language/explain.h"

#include <core/context/context_def_ext.h>
#include <core/context/errors.h>
#include <core/context/summary.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/threads/thread.h>
#include <core/script/console.h>
#include <core/strings/integer_text.h>
#include <core/strings/split.h>
#include <core/strings/term.h>
#include <core/strings/trim.h>
#include <core/values/type.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

namespace core::script {
namespace {

/// Failures whose first parameter is the number of a parameter, and what is said of them.
struct Explained {
    const char* id;
    const char* text; ///< {0} function, {1} parameter, {2} value, {3} its type
};
constexpr Explained kExplained[] = {
    {messages::kParameterType, "IDS_SCRIPT_ARGUMENT_TYPE"},
    {messages::kParameterValue, "IDS_SCRIPT_ARGUMENT_VALUE"},
    {"IDS_SCRIPT_NO_NUMBER", "IDS_SCRIPT_ARGUMENT_NO_NUMBER"},
    {"IDS_SCRIPT_NO_DATE", "IDS_SCRIPT_ARGUMENT_NO_DATE"},
};

int user_alias() {
    return Thread::getResourceLocale().isRussian() ? kRussian : kEnglish;
}

wstring parameter_name(IContextDef& definition, int method, int param) {
    const InterfacePtr<IContextDefParams> named(&definition);
    const wchar* const name = named ? named->getParamName(method, param, user_alias()) : nullptr;
    return name != nullptr ? wstring(name) : string_intto(param + 1);
}

wstring parameter_of_new(const Type& type, int param) {
    const wstring list = member_summary(*type.get(), u"New_Parameters", Thread::getResourceLocale());
    const std::vector<wstring_view> names = string_tokenize(list, u",");
    const auto at = static_cast<std::size_t>(param);
    const bool isNamed = at < names.size() && trim_all(names[at]) != u"…";
    return isNamed ? wstring(trim_all(names[at])) : string_intto(param + 1);
}

wstring short_display(const Value& value) {
    constexpr std::size_t kMost = 60;
    wstring text = display(value, user_alias());
    if (text.size() > kMost)
        text.replace(kMost, wstring::npos, u"…");
    return text;
}

/// Throws a failure about the value of an argument again, with that value; returns for every other failure.
template <class ParameterName>
void explain_value(const ContextException& failure, const wstring& name,
                   std::span<const GenericValue> arguments, ParameterName parameterName) {
    const std::string_view id = failure.messageId();
    const auto* const known =
        std::ranges::find_if(kExplained, [&](const Explained& one) { return id == one.id; });
    if (known == std::end(kExplained) || failure.parameters().empty())
        return;
    const auto number = string_toint<int>(failure.parameters()[0]);
    if (!number || *number < 1 || static_cast<std::size_t>(*number) > arguments.size())
        return;
    const Value& value = arguments[static_cast<std::size_t>(*number) - 1];
    const wstring parameters[] = {name, parameterName(*number - 1), short_display(value),
                                  value.type().presentation()};
    std::vector<wstring> all(failure.parameters().begin(), failure.parameters().end());
    all.insert(all.end(), std::begin(parameters), std::end(parameters));
    ContextException explained(
        message_text(known->text, {parameters[0], parameters[1], parameters[2], parameters[3]}),
        wrap_exception(failure).get());
    explained.setMessage(failure.messageId(), all);
    throw explained;
}

} // namespace

void missing_argument(IContextDef& definition, int method, const wstring& name, int param) {
    ContextException failure(
        message_text("IDS_SCRIPT_MISSING_ARGUMENT", {name, parameter_name(definition, method, param)}));
    throw_with_message(std::move(failure), messages::kMissingArgument, {name, string_intto(param + 1)});
}

void explain_index(const ContextException& failure) {
    if (failure.messageId() != std::string_view(messages::kBadIndex) || failure.parameters().size() != 2)
        return;
    ContextException explained(
        message_text("IDS_SCRIPT_INDEX", {failure.parameters()[0], failure.parameters()[1]}),
        wrap_exception(failure).get());
    explained.setMessage(failure.messageId(), failure.parameters());
    throw explained;
}

void explain_argument(const ContextException& failure, IContextDef& definition, int method,
                      const wstring& name, std::span<const GenericValue> arguments) {
    explain_index(failure);
    const std::string_view id = failure.messageId();
    if (id == messages::kMissingArgument && failure.parameters().size() > 1) {
        if (const auto number = string_toint<int>(failure.parameters()[1]))
            missing_argument(definition, method, name, *number - 1);
    }
    if (id == messages::kTooManyArguments && failure.parameters().size() > 1)
        throw_error<ContextException>(messages::kTooManyArguments, {name, failure.parameters()[1]});
    explain_value(failure, name, arguments,
                  [&](int param) { return parameter_name(definition, method, param); });
}

void explain_construction(const ContextException& failure, const wstring& type,
                          std::span<const GenericValue> arguments) {
    explain_value(failure, type, arguments, [&](int param) { return parameter_of_new(Type(type), param); });
}

} // namespace core::script
