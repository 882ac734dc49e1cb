// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/data/color_table.h"

#include <core/presentation/color_tables.h>

namespace core {
namespace {

using detail::rgb;

// The colours that a Windows desktop is drawn in, by the numbers that this system gives them; it has no
// number 25. The values are those of its light theme, which every system shows, so that a document looks the
// same on each.
constexpr NamedColor kWindowsColors[] = {
    {{u"ScrollBar", u"ПолосаПрокрутки"}, rgb(0xC8C8C8), 0},
    {{u"Desktop", u"РабочийСтол"}, rgb(0x000000), 1},
    {{u"ActiveCaption", u"ЗаголовокАктивногоОкна"}, rgb(0x99B4D1), 2},
    {{u"InactiveCaption", u"ЗаголовокНеактивногоОкна"}, rgb(0xBFCDDB), 3},
    {{u"Menu", u"Меню"}, rgb(0xF0F0F0), 4},
    {{u"Window", u"Окно"}, rgb(0xFFFFFF), 5},
    {{u"WindowFrame", u"РамкаОкна"}, rgb(0x646464), 6},
    {{u"MenuText", u"ТекстМеню"}, rgb(0x000000), 7},
    {{u"WindowText", u"ТекстОкна"}, rgb(0x000000), 8},
    {{u"CaptionText", u"ТекстЗаголовка"}, rgb(0x000000), 9},
    {{u"ActiveBorder", u"ГраницаАктивногоОкна"}, rgb(0xB4B4B4), 10},
    {{u"InactiveBorder", u"ГраницаНеактивногоОкна"}, rgb(0xF4F7FC), 11},
    {{u"ApplicationWorkspace", u"РабочаяОбластьПриложения"}, rgb(0xABABAB), 12},
    {{u"Highlight", u"Выделение"}, rgb(0x0078D7), 13},
    {{u"HighlightText", u"ТекстВыделения"}, rgb(0xFFFFFF), 14},
    {{u"ButtonFace", u"ПоверхностьКнопки"}, rgb(0xF0F0F0), 15},
    {{u"ButtonShadow", u"ТеньКнопки"}, rgb(0xA0A0A0), 16},
    {{u"DisabledText", u"ТекстНедоступного"}, rgb(0x6D6D6D), 17},
    {{u"ButtonText", u"ТекстКнопки"}, rgb(0x000000), 18},
    {{u"InactiveCaptionText", u"ТекстЗаголовкаНеактивногоОкна"}, rgb(0x000000), 19},
    {{u"ButtonHighlight", u"ПодсветкаКнопки"}, rgb(0xFFFFFF), 20},
    {{u"ButtonDarkShadow", u"ТемнаяТеньКнопки"}, rgb(0x696969), 21},
    {{u"ButtonLight", u"СветКнопки"}, rgb(0xE3E3E3), 22},
    {{u"TooltipText", u"ТекстПодсказки"}, rgb(0x000000), 23},
    {{u"TooltipBackground", u"ФонПодсказки"}, rgb(0xFFFFE1), 24},
    {{u"HotTrack", u"Гиперссылка"}, rgb(0x0066CC), 26},
    {{u"ActiveCaptionGradient", u"ГрадиентЗаголовкаАктивногоОкна"}, rgb(0xB9D1EA), 27},
    {{u"InactiveCaptionGradient", u"ГрадиентЗаголовкаНеактивногоОкна"}, rgb(0xD7E4F2), 28},
    {{u"MenuHighlight", u"ВыделениеМеню"}, rgb(0x0078D7), 29},
    {{u"MenuBar", u"ПолосаМеню"}, rgb(0xF0F0F0), 30},
};
static_assert(detail::is_color_table(kWindowsColors));

} // namespace

std::span<const NamedColor> windows_colors() noexcept {
    return kWindowsColors;
}

} // namespace core
