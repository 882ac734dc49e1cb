// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace core {

/// How much a locale's own form of a date says.
enum class DateStyle { shortForm, mediumForm, longForm, fullForm };

/// The names that `width` letters of a pattern stand for: 12 months, 7 days of the week from Sunday, 4
/// quarters, the halves of the day, 24 names of the hours' parts of the day, the eras. Empty for letters that
/// stand for no names.
[[nodiscard]] std::vector<wstring> date_names(const Locale& locale, wchar letter, std::size_t width);

/// A locale's own pattern.
struct LocalePattern {
    wstring text;
    std::vector<wstring> months; ///< the twelve numbers of months where they are not digits ("ix")
};

/// The locale's own pattern of a date, of a time, or of both. A date has no zone, so that times of the long
/// and full forms are those of the medium one.
[[nodiscard]] LocalePattern locale_pattern(const Locale& locale, std::optional<DateStyle> date,
                                           std::optional<DateStyle> time);

} // namespace core
