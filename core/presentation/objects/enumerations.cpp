// SPDX-License-Identifier: Apache-2.0
#include <core/objects/enumeration.h>
#include <core/presentation/border.h>
#include <core/presentation/color.h>
#include <core/presentation/font.h>
#include <core/presentation/picture_info.h>
#include <core/presentation/services.h>

namespace core {
namespace {

constexpr EnumerationItem kColorKindItems[] = {
    {{u"Automatic", u"Автоматический"}, "IDS_COLOR_KIND_AUTO", 0},
    {{u"Absolute", u"Абсолютный"}, "IDS_COLOR_KIND_ABSOLUTE", 1},
    {{u"Web", u"Веб"}, "IDS_COLOR_KIND_WEB", 2},
    {{u"Windows", u"Виндовс"}, "IDS_COLOR_KIND_WINDOWS", 3},
    {{u"Style", u"Стиль"}, "IDS_COLOR_KIND_STYLE", 4},
};
constexpr EnumerationInfo kColorKindInfo = {
    .type = {.id = "f3eb4a84-71e6-4b52-8161-80b49ba15bfb"_guid,
             .valueClass = "c5dbdc22-dd4c-4e5d-803d-f2ddff558b4f"_guid,
             .names = {u"ColorKind", u"ВидЦвета"},
             .presentation = "IDS_COLOR_KIND"},
    .factory = "4ca79915-178e-414f-aec6-d1ba4c2f0ce4"_guid,
    .items = kColorKindItems,
};
const EnumerationEntry<kColorKindInfo> kColorKind("ColorKind");

constexpr EnumerationItem kFontKindItems[] = {
    {{u"Automatic", u"Автоматический"}, "IDS_FONT_KIND_AUTO", 0},
    {{u"Absolute", u"Абсолютный"}, "IDS_FONT_KIND_ABSOLUTE", 1},
    {{u"Style", u"Стиль"}, "IDS_FONT_KIND_STYLE", 2},
};
constexpr EnumerationInfo kFontKindInfo = {
    .type = {.id = "e21535f7-ea1c-4d79-82e1-82a586307a7d"_guid,
             .valueClass = "5ff5c10e-6282-4c40-8fb0-ea3fb9819544"_guid,
             .names = {u"FontKind", u"ВидШрифта"},
             .presentation = "IDS_FONT_KIND"},
    .factory = "bca8d679-adf6-4c25-94e4-fdc6057c4f02"_guid,
    .items = kFontKindItems,
};
const EnumerationEntry<kFontKindInfo> kFontKind("FontKind");

constexpr EnumerationItem kFontSlantItems[] = {
    {{u"Upright", u"Прямой"}, "IDS_FONT_SLANT_UPRIGHT", 0},
    {{u"Italic", u"Курсив"}, "IDS_FONT_SLANT_ITALIC", 1},
    {{u"Oblique", u"Наклонный"}, "IDS_FONT_SLANT_OBLIQUE", 2},
};
constexpr EnumerationInfo kFontSlantInfo = {
    .type = {.id = "948f7c40-da2f-4e99-8ebd-4ea4e88f748d"_guid,
             .valueClass = "322b7f40-df63-4395-bd17-fdcd493a42e0"_guid,
             .names = {u"FontSlant", u"НаклонШрифта"},
             .presentation = "IDS_FONT_SLANT"},
    .factory = "6829707c-99cc-4165-ba53-fa2ee71e4dfd"_guid,
    .items = kFontSlantItems,
};
const EnumerationEntry<kFontSlantInfo> kFontSlant("FontSlant");

constexpr EnumerationItem kLineKindItems[] = {
    {{u"None", u"Нет"}, "IDS_LINE_NONE", 0},
    {{u"Solid", u"Сплошная"}, "IDS_LINE_SOLID", 1},
    {{u"Dotted", u"Точечная"}, "IDS_LINE_DOTTED", 2},
    {{u"Dashed", u"Штриховая"}, "IDS_LINE_DASHED", 3},
    {{u"DashDot", u"Штрихпунктирная"}, "IDS_LINE_DASH_DOT", 4},
    {{u"DashDotDot", u"ШтрихДвойнойПунктир"}, "IDS_LINE_DASH_DOT_DOT", 5},
    {{u"Double", u"Двойная"}, "IDS_LINE_DOUBLE", 6},
};
constexpr EnumerationInfo kLineKindInfo = {
    .type = {.id = "0c9a97ff-c072-4a53-8cf1-a9d892423d47"_guid,
             .valueClass = "ee92a1aa-6c59-4513-87c9-856c8ac734b9"_guid,
             .names = {u"LineKind", u"ВидЛинии"},
             .presentation = "IDS_LINE_KIND"},
    .factory = "b64b3b0e-a945-4ca5-84ae-70d6ed8d163d"_guid,
    .items = kLineKindItems,
};
const EnumerationEntry<kLineKindInfo> kLineKind("LineKind");

constexpr EnumerationItem kBorderKindItems[] = {
    {{u"Automatic", u"Автоматическая"}, "IDS_BORDER_AUTO", 0},
    {{u"Lines", u"Линии"}, "IDS_BORDER_LINES", 1},
    {{u"Raised", u"Выпуклая"}, "IDS_BORDER_RAISED", 2},
    {{u"Sunken", u"Вдавленная"}, "IDS_BORDER_SUNKEN", 3},
    {{u"Rounded", u"Скругленная"}, "IDS_BORDER_ROUNDED", 4},
};
constexpr EnumerationInfo kBorderKindInfo = {
    .type = {.id = "31f7e4fc-6426-45c0-8129-81c935061e76"_guid,
             .valueClass = "7928c75a-432f-49fc-9c86-21a642d061b0"_guid,
             .names = {u"BorderKind", u"ВидРамки"},
             .presentation = "IDS_BORDER_KIND"},
    .factory = "581d1552-2aba-4979-9cd1-60103aa732a1"_guid,
    .items = kBorderKindItems,
};
const EnumerationEntry<kBorderKindInfo> kBorderKind("BorderKind");

constexpr EnumerationItem kPictureFormatItems[] = {
    {{u"Unknown", u"Неизвестный"}, "IDS_PICTURE_FORMATS_UNKNOWN", 0},
    {{u"PNG"}, "IDS_PICTURE_FORMATS_PNG", 1},
    {{u"JPEG"}, "IDS_PICTURE_FORMATS_JPEG", 2},
    {{u"GIF"}, "IDS_PICTURE_FORMATS_GIF", 3},
    {{u"BMP"}, "IDS_PICTURE_FORMATS_BMP", 4},
    {{u"ICO"}, "IDS_PICTURE_FORMATS_ICO", 5},
    {{u"TIFF"}, "IDS_PICTURE_FORMATS_TIFF", 6},
    {{u"WebP"}, "IDS_PICTURE_FORMATS_WEBP", 7},
    {{u"SVG"}, "IDS_PICTURE_FORMATS_SVG", 8},
    {{u"EMF"}, "IDS_PICTURE_FORMATS_EMF", 9},
    {{u"WMF"}, "IDS_PICTURE_FORMATS_WMF", 10},
};
constexpr EnumerationInfo kPictureFormatInfo = {
    .type = {.id = "6f6eaa14-e7d0-4308-96b8-fd3324b9ae73"_guid,
             .valueClass = "85418a5e-1e5e-4129-b0e3-b413d9842c7f"_guid,
             .names = {u"PictureFormat", u"ФорматКартинки"},
             .presentation = "IDS_PICTURE_FORMATS"},
    .factory = "33bcb71c-b69a-4fa4-ad33-c7d5b21dda60"_guid,
    .items = kPictureFormatItems,
};
const EnumerationEntry<kPictureFormatInfo> kPictureFormat("PictureFormat");

constexpr EnumerationItem kOutputRightItems[] = {
    {{u"Print", u"Печать"}, "IDS_OUTPUT_RIGHT_PRINT", 0},
    {{u"Save", u"Сохранение"}, "IDS_OUTPUT_RIGHT_SAVE", 1},
    {{u"Copy", u"Копирование"}, "IDS_OUTPUT_RIGHT_COPY", 2},
};
constexpr EnumerationInfo kOutputRightInfo = {
    .type = {.id = "89d7e380-0484-40ad-b7a1-6977eef8138b"_guid,
             .valueClass = "df529dfa-7830-48a3-9d71-1052b0689198"_guid,
             .names = {u"OutputRight", u"ПравоВывода"},
             .presentation = "IDS_OUTPUT_RIGHT"},
    .factory = "20f2b85c-8b26-454d-b516-e067043e4619"_guid,
    .items = kOutputRightItems,
};
const EnumerationEntry<kOutputRightInfo> kOutputRight("OutputRight");

} // namespace

Enumeration* script_enumeration(ColorKind) noexcept {
    return kColorKind.instance();
}

Enumeration* script_enumeration(FontKind) noexcept {
    return kFontKind.instance();
}

Enumeration* script_enumeration(FontSlant) noexcept {
    return kFontSlant.instance();
}

Enumeration* script_enumeration(LineKind) noexcept {
    return kLineKind.instance();
}

Enumeration* script_enumeration(BorderKind) noexcept {
    return kBorderKind.instance();
}

Enumeration* script_enumeration(PictureFormat) noexcept {
    return kPictureFormat.instance();
}

Enumeration* script_enumeration(OutputRight) noexcept {
    return kOutputRight.instance();
}

} // namespace core
