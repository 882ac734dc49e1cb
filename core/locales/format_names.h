// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/term.h>

/// The names of the items of format strings. The place in a table is the number of the item.
namespace core {

namespace numeric_item {
enum Number : std::size_t {
    kLocale,
    kFraction,
    kDigits,
    kWhole,
    kPoint,
    kGroup,
    kGrouping,
    kSign,
    kScale,
    kZero,
    kNegative,
    kEmpty
};
} // namespace numeric_item

inline constexpr NamePair kNumericItems[] = {
    {u"locale", u"локаль"}, {u"fraction", u"дробь"}, {u"digits", u"цифры"},           {u"whole", u"целая"},
    {u"point", u"точка"},   {u"group", u"группа"},   {u"grouping", u"группы"},        {u"sign", u"знак"},
    {u"scale", u"масштаб"}, {u"zero", u"ноль"},      {u"negative", u"отрицательное"}, {u"empty", u"пусто"}};

namespace date_item {
enum Number : std::size_t { kLocale, kDate, kTime, kDateTime, kEmpty };
} // namespace date_item

inline constexpr NamePair kDateItems[] = {{u"locale", u"локаль"},
                                          {u"date", u"дата"},
                                          {u"time", u"время"},
                                          {u"datetime", u"датавремя"},
                                          {u"empty", u"пусто"}};

namespace bool_item {
enum Number : std::size_t { kLocale, kTrue, kFalse, kEmpty };
} // namespace bool_item

inline constexpr NamePair kBoolItems[] = {
    {u"locale", u"локаль"}, {u"true", u"истина"}, {u"false", u"ложь"}, {u"empty", u"пусто"}};

} // namespace core
