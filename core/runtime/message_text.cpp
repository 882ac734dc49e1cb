// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/icu_length.h"

#include <core/runtime/exception.h>
#include <core/runtime/module.h>
#include <core/runtime/utf8.h>

#include <unicode/msgfmt.h>

#include <vector>

namespace core {
namespace {

wstring fill_in(const wstring& pattern, std::initializer_list<wstring> params) {
    std::vector<icu::Formattable> values;
    values.reserve(params.size());
    for (const wstring& param : params)
        values.emplace_back(icu::UnicodeString(param.data(), icu_length(param.size())));
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString text;
    icu::MessageFormat::format(icu::UnicodeString(pattern.data(), icu_length(pattern.size())), values.data(),
                               static_cast<std::int32_t>(values.size()), text, status);
    return U_SUCCESS(status) ? wstring(text.getBuffer(), static_cast<std::size_t>(text.length())) : pattern;
}

} // namespace

wstring detail::message_text_of(const ModuleAnchor& module, const char* id,
                                std::initializer_list<wstring> params) {
    wstring pattern = load_wstring(module.bundle.load(std::memory_order_acquire), id);
    if (pattern.empty())
        pattern = load_wstring(&core_module().resourceBundle(), id);
    if (!pattern.empty())
        return params.size() == 0 ? pattern : fill_in(pattern, params);
    wstring text = id != nullptr ? from_utf8(id) : wstring();
    for (const wstring& param : params)
        text += u' ' + param;
    return text;
}

} // namespace core
