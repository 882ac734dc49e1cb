// SPDX-License-Identifier: Apache-2.0
#include "host/engine/offered_functions.h"

#include <core/context/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/term.h>

namespace core::script {

void OfferedFunctions::add(wstring_view english, wstring_view russian, Function function) {
    Entry entry{{wstring(english), wstring(russian)}, std::make_shared<const Function>(std::move(function))};
    if (const int same = names_.find(english); same >= 0 && same == names_.find(russian)) {
        entries_[static_cast<std::size_t>(same)] = std::move(entry);
        return;
    }
    // A name of another function leads to this one from now on.
    NameTable names;
    names.add(english, getNMethods());
    names.add(russian, getNMethods());
    for (int method = 0; method < getNMethods(); ++method) {
        for (const wstring& name : entries_[static_cast<std::size_t>(method)].names)
            if (names_.find(name) == method)
                names.add(name, method);
    }
    entries_.push_back(std::move(entry));
    names_ = std::move(names);
}

const OfferedFunctions::Entry* OfferedFunctions::at(int method) const noexcept {
    return method >= 0 && method < getNMethods() ? &entries_[static_cast<std::size_t>(method)] : nullptr;
}

const Parameter* OfferedFunctions::parameterAt(int method, int param) const noexcept {
    const Entry* const entry = at(method);
    return entry != nullptr && param >= 0 && param < getNParams(method)
               ? &entry->function->parameters[static_cast<std::size_t>(param)]
               : nullptr;
}

const wchar* OfferedFunctions::getMethodName(int method, int alias) const {
    const Entry* const entry = at(method);
    return entry != nullptr && (alias == kEnglish || alias == kRussian) ? entry->names[alias].c_str()
                                                                        : nullptr;
}

int OfferedFunctions::getNParams(int method) const {
    const Entry* const entry = at(method);
    return entry != nullptr ? static_cast<int>(entry->function->parameters.size()) : 0;
}

bool OfferedFunctions::isParamOut(int method, int param) const {
    const Parameter* const parameter = parameterAt(method, param);
    return parameter != nullptr && parameter->out;
}

bool OfferedFunctions::getParamDefValue(int method, int param, GenericValue* out) const {
    const Parameter* const parameter = parameterAt(method, param);
    if (parameter == nullptr || !parameter->optional)
        return false;
    if (out != nullptr)
        *out = {};
    return true;
}

bool OfferedFunctions::hasRetVal(int method) const {
    const Entry* const entry = at(method);
    return entry != nullptr && entry->function->returns;
}

InterfacePtr<IContextDef> OfferedFunctions::getIContextDef() {
    return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
}

void OfferedFunctions::getPropVal(int prop, GenericValue&) {
    throw_error<ContextException>(messages::kNoProperty, {string_intto(prop)});
}

void OfferedFunctions::setPropVal(int prop, const GenericValue&) {
    throw_error<ContextException>(messages::kNoProperty, {string_intto(prop)});
}

void OfferedFunctions::call(int method, GenericValue* result, std::vector<GenericValue>* params) {
    const Entry* const entry = at(method);
    if (entry == nullptr)
        throw_error<ContextException>(messages::kNoMethod, {string_intto(method)});
    const std::shared_ptr<const Function> function = entry->function; // the call may replace it
    const std::size_t count = function->parameters.size();
    std::vector<GenericValue> none;
    std::vector<GenericValue>& arguments = params != nullptr ? *params : none;
    if (arguments.size() > count)
        throw_error<ContextException>(messages::kTooManyArguments,
                                      {entry->names[kEnglish], string_intto(count)});
    for (std::size_t i = arguments.size(); i < count; ++i)
        if (!function->parameters[i].optional)
            throw_error<ContextException>(messages::kMissingArgument,
                                          {entry->names[kEnglish], string_intto(i + 1)});
    arguments.resize(count);
    GenericValue returned = function->call(arguments);
    if (result != nullptr)
        *result = function->returns ? std::move(returned) : GenericValue();
}

} // namespace core::script
