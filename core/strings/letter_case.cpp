// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/icu_length.h"

#include <core/runtime/utf8.h>
#include <core/strings/letter_case.h>

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <new>

namespace core {
namespace {

using Convert = decltype(&u_strToUpper);

wstring converted(Convert convert, wstring_view text, const Locale& locale) {
    if (text.empty())
        return {};
    wstring result(text.size(), u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = convert(result.data(), icu_length(result.size()), text.data(),
                                            icu_length(text.size()), locale.key().c_str(), &status);
        if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR)
            throw std::bad_alloc(); // the arguments leave no other reason
        result.resize(static_cast<std::size_t>(length));
        if (U_SUCCESS(status))
            return result;
    }
}

} // namespace

wchar to_upper(wchar c) noexcept {
    return static_cast<wchar>(u_toupper(c));
}

wchar to_lower(wchar c) noexcept {
    return static_cast<wchar>(u_tolower(c));
}

wstring to_upper(wstring_view text, const Locale& locale) {
    return converted(&u_strToUpper, text, locale);
}

wstring to_lower(wstring_view text, const Locale& locale) {
    return converted(&u_strToLower, text, locale);
}

std::string to_upper(std::string_view text, const Locale& locale) {
    return to_utf8(to_upper(from_utf8(text), locale));
}

std::string to_lower(std::string_view text, const Locale& locale) {
    return to_utf8(to_lower(from_utf8(text), locale));
}

} // namespace core
