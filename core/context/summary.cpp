// SPDX-License-Identifier: Apache-2.0
#include <core/context/summary.h>
#include <core/runtime/module.h>
#include <core/runtime/utf8.h>
#include <core/strings/term.h>

#include <algorithm>
#include <string>

namespace core {
namespace {

wstring text_of(const SCOM_Module& module, const std::string& id, const Locale& locale) {
    unsigned length = 0;
    const wchar* const text = module.resourceBundle().getString(id.c_str(), locale, length);
    return text != nullptr ? wstring(text, length) : wstring();
}

bool declares(const SCOM_Module& module, const GUID& type) {
    return std::ranges::any_of(module.classTable(), [&type](const ClassRecord& record) {
        return record.clsid != nullptr && *record.clsid == type;
    });
}

/// Types that no module declares are the primitive ones, which are the library's.
wstring text_of(const IType& type, const std::string& id, const Locale& locale) {
    const ModulesScope scope;
    for (const SCOM_Module* const module : registered_modules()) {
        if (declares(*module, type.id()))
            return text_of(*module, id, locale);
    }
    return text_of(core_module(), id, locale);
}

std::string id_of(const IType& type) {
    return "DOC_" + to_utf8(type.name(kEnglish));
}

} // namespace

wstring type_summary(const IType& type, const Locale& locale) {
    return text_of(type, id_of(type), locale);
}

wstring member_summary(const IType& type, wstring_view member, const Locale& locale) {
    return text_of(type, id_of(type) + '_' + to_utf8(member), locale);
}

wstring function_summary(wstring_view function, const Locale& locale) {
    const std::string id = "DOC_Functions_" + to_utf8(function);
    const ModulesScope scope;
    for (const SCOM_Module* const module : registered_modules()) {
        if (wstring text = text_of(*module, id, locale); !text.empty())
            return text;
    }
    return {};
}

} // namespace core
