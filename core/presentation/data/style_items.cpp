// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/data/color_table.h"

#include <core/presentation/color_tables.h>
#include <core/presentation/font.h>

#include <algorithm>
#include <iterator>

namespace core {
namespace {

using detail::rgb;

// Texts on the backgrounds below have a contrast of 4.5 and more.
constexpr NamedColor kStyleItems[] = {
    {{u"TextColor", u"ЦветТекста"}, rgb(0x1B1F24)},
    {{u"BackColor", u"ЦветФона"}, rgb(0xFFFFFF)},
    {{u"BorderColor", u"ЦветРамки"}, rgb(0xC8CDD3)},
    {{u"TitleTextColor", u"ЦветТекстаЗаголовка"}, rgb(0x1B1F24)},
    {{u"HeaderTextColor", u"ЦветТекстаШапки"}, rgb(0x1B1F24)},
    {{u"HeaderBackColor", u"ЦветФонаШапки"}, rgb(0xEEF1F4)},
    {{u"TotalsTextColor", u"ЦветТекстаИтогов"}, rgb(0x1B1F24)},
    {{u"TotalsBackColor", u"ЦветФонаИтогов"}, rgb(0xF6F8FA)},
    {{u"FieldTextColor", u"ЦветТекстаПоля"}, rgb(0x1B1F24)},
    {{u"FieldBackColor", u"ЦветФонаПоля"}, rgb(0xFFFFFF)},
    {{u"ButtonTextColor", u"ЦветТекстаКнопки"}, rgb(0x1B1F24)},
    {{u"ButtonBackColor", u"ЦветФонаКнопки"}, rgb(0xEEF1F4)},
    {{u"SelectionTextColor", u"ЦветТекстаВыделения"}, rgb(0xFFFFFF)},
    {{u"SelectionBackColor", u"ЦветФонаВыделения"}, rgb(0x0B5CAD)},
    {{u"AccentColor", u"ЦветАкцента"}, rgb(0x0B5CAD)},
    {{u"NegativeTextColor", u"ЦветОтрицательногоЧисла"}, rgb(0xB3261E)},
    {{u"DisabledTextColor", u"ЦветНедоступногоТекста"}, rgb(0x6A717A)},
};
static_assert(detail::is_color_table(kStyleItems));

constexpr NamePair kFonts[] = {
    {u"TextFont", u"ШрифтТекста"},
    {u"TitleFont", u"ШрифтЗаголовка"},
    {u"HeaderFont", u"ШрифтШапки"},
    {u"TotalsFont", u"ШрифтИтогов"},
};

} // namespace

std::span<const NamedColor> style_colors() noexcept {
    return kStyleItems;
}

std::span<const NamePair> style_fonts() noexcept {
    return kFonts;
}

Font default_font(std::size_t position) {
    constexpr std::int32_t kTextSize = 1000;
    constexpr std::int32_t kTitleSize = 1400;
    Font font;
    font.face = u"";
    font.size = position == 1 ? kTitleSize : kTextSize;
    font.weight = position == 0 ? kNormalWeight : kBoldWeight;
    font.slant = FontSlant::upright;
    font.underline = false;
    font.strikeOut = false;
    return font;
}

} // namespace core
