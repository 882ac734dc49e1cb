// SPDX-License-Identifier: Apache-2.0
#include "core/descriptions/enumerations.h"

#include <core/descriptions/qualifier_values.h>

namespace core {
namespace {

constexpr Term kAllowedSign = {u"AllowedSign", u"ДопустимыйЗнак"};
constexpr Term kAny = {u"Any", u"Любой"};
constexpr Term kNonnegative = {u"Nonnegative", u"Неотрицательный"};
constexpr EnumerationItem kSigns[] = {
    {kAny, "IDS_CORE_ALLOWED_SIGN_ANY", 0},
    {kNonnegative, "IDS_CORE_ALLOWED_SIGN_NONNEGATIVE", 1},
};
constexpr EnumerationInfo kSignInfo = {
    .type = {.id = kAllowedSignType,
             .valueClass = "acf06b8a-8320-4f0c-a9bd-18e1b75d8a88"_guid,
             .names = kAllowedSign,
             .presentation = "IDS_CORE_ALLOWED_SIGN"},
    .factory = "d7fbd672-060a-4a57-9a35-0ddf1c9b82eb"_guid,
    .items = kSigns,
};
const EnumerationEntry<kSignInfo> kSignEntry("AllowedSign");

constexpr Term kAllowedLength = {u"AllowedLength", u"ДопустимаяДлина"};
constexpr Term kFixed = {u"Fixed", u"Фиксированная"};
constexpr Term kVariable = {u"Variable", u"Переменная"};
constexpr EnumerationItem kLengths[] = {
    {kFixed, "IDS_CORE_ALLOWED_LENGTH_FIXED", 0},
    {kVariable, "IDS_CORE_ALLOWED_LENGTH_VARIABLE", 1},
};
constexpr EnumerationInfo kLengthInfo = {
    .type = {.id = kAllowedLengthType,
             .valueClass = "cac87970-f4fc-4184-a8db-8b48c413ef85"_guid,
             .names = kAllowedLength,
             .presentation = "IDS_CORE_ALLOWED_LENGTH"},
    .factory = "91acc60f-1a82-4a7c-b240-e585753cf784"_guid,
    .items = kLengths,
};
const EnumerationEntry<kLengthInfo> kLengthEntry("AllowedLength");

constexpr Term kDateFractions = {u"DateFractions", u"ЧастиДаты"};
constexpr Term kDate = {u"Date", u"Дата"};
constexpr Term kTime = {u"Time", u"Время"};
constexpr Term kDateTime = {u"DateTime", u"ДатаВремя"};
constexpr EnumerationItem kFractions[] = {
    {kDate, "IDS_CORE_DATE_FRACTIONS_DATE", 1},
    {kTime, "IDS_CORE_DATE_FRACTIONS_TIME", 2},
    {kDateTime, "IDS_CORE_DATE_FRACTIONS_DATE_TIME", 3},
};
constexpr EnumerationInfo kFractionsInfo = {
    .type = {.id = kDateFractionsType,
             .valueClass = "f1db130d-49db-4178-9d51-19404b1f14e7"_guid,
             .names = kDateFractions,
             .presentation = "IDS_CORE_DATE_FRACTIONS"},
    .factory = "b4dfa34b-164f-4ea1-a96b-6e018729763e"_guid,
    .items = kFractions,
};
const EnumerationEntry<kFractionsInfo> kFractionsEntry("DateFractions");

} // namespace

const Enumeration& allowed_sign() noexcept {
    return *kSignEntry.instance();
}

const Enumeration& allowed_length() noexcept {
    return *kLengthEntry.instance();
}

const Enumeration& date_fractions() noexcept {
    return *kFractionsEntry.instance();
}

} // namespace core
