// SPDX-License-Identifier: Apache-2.0
#include "core/locales/collator.h"
#include "core/runtime/icu_length.h"

#include <core/locales/collate.h>
#include <core/locales/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <memory>
#include <vector>

namespace core {
namespace {

struct CloseCollator {
    void operator()(UCollator* collator) const noexcept { ucol_close(collator); }
};

struct OpenCollator {
    Locale locale;
    UCollationStrength strength;
    std::unique_ptr<UCollator, CloseCollator> collator;
};

int collate(wstring_view a, wstring_view b, const Locale& locale, UCollationStrength strength) {
    return ucol_strcoll(detail::collator_for(locale, strength), a.data(), icu_length(a.size()), b.data(),
                        icu_length(b.size()));
}

} // namespace

// A process works in one locale or two, so the search is short.
const UCollator* detail::collator_for(const Locale& locale, UCollationStrength strength) {
    thread_local std::vector<OpenCollator> opened;
    for (const OpenCollator& entry : opened)
        if (entry.strength == strength && entry.locale == locale)
            return entry.collator.get();

    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UCollator, CloseCollator> collator(ucol_open(locale.key().c_str(), &status));
    if (U_FAILURE(status))
        throw_error<LocaleException>(messages::kNoCollation, {from_utf8(locale.key())});
    ucol_setStrength(collator.get(), strength);
    return opened.emplace_back(OpenCollator{locale, strength, std::move(collator)}).collator.get();
}

int compare(wstring_view a, wstring_view b, const Locale& locale) {
    const int order = collate(a, b, locale, UCOL_TERTIARY);
    return order != 0 ? order : compare(a, b);
}

int compare(std::string_view a, std::string_view b, const Locale& locale) {
    return compare(from_utf8(a), from_utf8(b), locale);
}

int compare_nocase(wstring_view a, wstring_view b, const Locale& locale) {
    return collate(a, b, locale, UCOL_SECONDARY);
}

int compare_nocase(std::string_view a, std::string_view b, const Locale& locale) {
    return compare_nocase(from_utf8(a), from_utf8(b), locale);
}

} // namespace core
