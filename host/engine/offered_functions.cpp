// SPDX-License-Identifier: Apache-2.0
#include "host/engine/offered_functions.h"

#include <core/strings/compare.h>
#include <core/strings/term.h>

namespace core::script {

void OfferedFunctions::add(wstring_view english, wstring_view russian, NativeFunction function) {
    Entry entry{{wstring(english), wstring(russian)},
                std::make_shared<const NativeFunction>(std::move(function))};
    const auto isNew = [&](const wstring& name) {
        return compare_nocase(name, english) == 0 || compare_nocase(name, russian) == 0;
    };
    if (const int same = names_.find(english); same >= 0 && same == names_.find(russian)) {
        Entry& old = entries_[static_cast<std::size_t>(same)];
        if (isNew(old.names[kEnglish]) && isNew(old.names[kRussian])) {
            old = std::move(entry);
            return;
        }
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

const Param* OfferedFunctions::parameterAt(int method, int param) const noexcept {
    const Entry* const entry = at(method);
    return entry != nullptr ? core::detail::entry_at(entry->function->params(), param) : nullptr;
}

const wchar* OfferedFunctions::getMethodName(int method, int alias) const {
    const Entry* const entry = at(method);
    return entry != nullptr && (alias == kEnglish || alias == kRussian) ? entry->names[alias].c_str()
                                                                        : nullptr;
}

int OfferedFunctions::getNParams(int method) const {
    const Entry* const entry = at(method);
    return entry != nullptr ? static_cast<int>(entry->function->params().size()) : 0;
}

bool OfferedFunctions::isParamIn(int method, int param) const {
    const Param* const parameter = parameterAt(method, param);
    return parameter == nullptr || parameter->in;
}

bool OfferedFunctions::isParamOut(int method, int param) const {
    const Param* const parameter = parameterAt(method, param);
    return parameter != nullptr && parameter->out;
}

bool OfferedFunctions::getParamDefValue(int method, int param, GenericValue* out) const {
    const Param* const parameter = parameterAt(method, param);
    return parameter != nullptr && parameter->getDefault(out);
}

bool OfferedFunctions::hasRetVal(int method) const {
    const Entry* const entry = at(method);
    return entry != nullptr && entry->function->returns();
}

const wchar* OfferedFunctions::getParamName(int method, int param, int alias) const {
    const Param* const parameter = parameterAt(method, param);
    return parameter != nullptr ? term_string(parameter->names, alias) : nullptr;
}

InterfacePtr<IContextDef> OfferedFunctions::getIContextDef() {
    return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
}

void OfferedFunctions::getPropVal(int prop, GenericValue&) {
    core::detail::bad_property(prop);
}

void OfferedFunctions::setPropVal(int prop, const GenericValue&) {
    core::detail::bad_property(prop);
}

void OfferedFunctions::call(int method, GenericValue* result, std::vector<GenericValue>* params) {
    const Entry* const entry = at(method);
    if (entry == nullptr)
        core::detail::bad_method(method);
    const std::shared_ptr<const NativeFunction> function = entry->function; // the call may replace it
    std::vector<GenericValue> none;
    std::vector<GenericValue>& arguments = params != nullptr ? *params : none;
    if (arguments.size() != function->params().size())
        core::detail::complete_arguments(function->params(), arguments, entry->names[kEnglish].c_str());
    GenericValue returned = (*function)(arguments);
    if (result != nullptr)
        *result = function->returns() ? std::move(returned) : GenericValue();
}

} // namespace core::script
