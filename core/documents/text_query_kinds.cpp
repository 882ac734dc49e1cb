// SPDX-License-Identifier: Apache-2.0
#include <core/documents/text_document.h>

namespace core {
namespace {

constexpr EnumerationItem kKinds[] = {
    {{u"Exact", u"Точно"}, "IDS_TEXT_QUERY_KINDS_EXACT", 0},
    {{u"IgnoreCase", u"БезУчетаРегистра"}, "IDS_TEXT_QUERY_KINDS_IGNORECASE", 1},
    {{u"Regex", u"РегулярноеВыражение"}, "IDS_TEXT_QUERY_KINDS_REGEX", 2},
};
constexpr EnumerationInfo kTextQueryKindsInfo = {
    .type = {.id = "d69e5b5f-1cb2-4df0-981e-9e7e425526b0"_guid,
             .valueClass = "3369a28c-626d-4472-8bc9-cc678836b332"_guid,
             .names = {u"TextQueryKinds", u"ВидыПоискаТекста"},
             .presentation = "IDS_TEXT_QUERY_KINDS"},
    .factory = "7b4afa0e-3daf-4c57-aba7-1f2b0b4178e3"_guid,
    .items = kKinds,
};
const EnumerationEntry<kTextQueryKindsInfo> kTextQueryKindsEntry("TextQueryKinds");

} // namespace

Enumeration* script_enumeration(TextQueryKind) noexcept {
    return kTextQueryKindsEntry.instance();
}

} // namespace core
