// SPDX-License-Identifier: Apache-2.0
#include <core/objects/text_streams.h>

namespace core {
namespace {

constexpr EnumerationItem kLineEnds[] = {
    {{u"None", u"Нет"}, "IDS_LINE_ENDS_NONE", 0},
    {{u"LF", u"ПС"}, "IDS_LINE_ENDS_LF", 1},
    {{u"CR", u"ВК"}, "IDS_LINE_ENDS_CR", 2},
    {{u"CRLF", u"ВКПС"}, "IDS_LINE_ENDS_CRLF", 3},
    {{u"LineSeparator", u"РазделительСтрок"}, "IDS_LINE_ENDS_LINE", 4},
    {{u"ParagraphSeparator", u"РазделительАбзацев"}, "IDS_LINE_ENDS_PARAGRAPH", 5},
};
constexpr EnumerationInfo kLineEndsInfo = {
    .type = {.id = "e73511ff-afa9-46ef-8bfc-8a77c1c677ed"_guid,
             .valueClass = "bfaf6469-2107-44a1-9b51-170e54e1aab0"_guid,
             .names = {u"LineEnds", u"КонцыСтрок"},
             .presentation = "IDS_LINE_ENDS"},
    .factory = "7ad3ddd3-7e05-45e7-86fa-e569586f7b1e"_guid,
    .items = kLineEnds,
};
const EnumerationEntry<kLineEndsInfo> kLineEndsEntry("LineEnds");

constexpr EnumerationItem kActions[] = {
    {{u"Report", u"Сообщить"}, "IDS_CODING_ERROR_ACTIONS_REPORT", 0},
    {{u"Replace", u"Заменить"}, "IDS_CODING_ERROR_ACTIONS_REPLACE", 1},
    {{u"Escape", u"Экранировать"}, "IDS_CODING_ERROR_ACTIONS_ESCAPE", 2},
};
constexpr EnumerationInfo kActionsInfo = {
    .type = {.id = "a6ccdff4-0f80-4561-8b5d-777a902b2f82"_guid,
             .valueClass = "cca247f2-04db-4707-9297-0b76a18eab5d"_guid,
             .names = {u"CodingErrorActions", u"ДействияПриОшибкеКодировки"},
             .presentation = "IDS_CODING_ERROR_ACTIONS"},
    .factory = "c6a9d04e-1f0e-459d-9c41-a02e4280b1d9"_guid,
    .items = kActions,
};
const EnumerationEntry<kActionsInfo> kActionsEntry("CodingErrorActions");

} // namespace

Enumeration* script_enumeration(LineEnd) noexcept {
    return kLineEndsEntry.instance();
}

Enumeration* script_enumeration(CodingErrorAction) noexcept {
    return kActionsEntry.instance();
}

} // namespace core
