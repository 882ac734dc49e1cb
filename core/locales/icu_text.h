// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/memory/thread_kept.h"

#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace core {

[[nodiscard]] inline wstring text_of(const icu::UnicodeString& text) {
    return wstring(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

/// The locale as ICU's formatters of numbers and dates take it: always with the Gregorian calendar, and
/// English where none is named, whose words nobody takes for codes.
[[nodiscard]] inline icu::Locale gregorian_locale(const Locale& locale) {
    icu::Locale made(locale.key().empty() ? "en" : locale.key().c_str());
    UErrorCode status = U_ZERO_ERROR;
    made.setKeywordValue("calendar", "gregorian", status);
    return made;
}

/// The value that `make` makes for a locale, made once a thread and kept as long as the thread. A process
/// works in one locale or two, so the search is short.
template <class T, class Make>
const T& kept_for(const Locale& locale, Make make) {
    auto& kept = thread_kept<std::vector<std::pair<Locale, std::unique_ptr<const T>>>, Make>();
    for (const auto& [key, value] : kept) {
        if (key == locale)
            return *value;
    }
    auto made = std::make_unique<const T>(make(locale));
    return *kept.emplace_back(locale, std::move(made)).second;
}

} // namespace core
