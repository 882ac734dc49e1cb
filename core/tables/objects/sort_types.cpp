// SPDX-License-Identifier: Apache-2.0
#include <core/tables/terms.h>
#include <core/tables/value_list.h>

namespace core {
namespace {

constexpr EnumerationItem kDirections[] = {
    {kSortTypesAscending, "IDS_CORE_SORT_TYPES_ASCENDING", 0},
    {kSortTypesDescending, "IDS_CORE_SORT_TYPES_DESCENDING", 1},
};
constexpr EnumerationInfo kSortTypesInfo = {
    .type = {.id = "b10d5789-4dce-4ae2-8575-1a0112f0d60c"_guid,
             .valueClass = "0e8485bd-469e-41b6-878d-68ae89293152"_guid,
             .names = kSortTypesTerm,
             .presentation = "IDS_CORE_SORT_TYPES"},
    .factory = "2caab6c9-5e16-457e-a21b-2a53ab2f8131"_guid,
    .items = kDirections,
};
const EnumerationEntry<kSortTypesInfo> kSortTypesEntry("SortTypes");

} // namespace

const Enumeration& sort_types() noexcept {
    return *kSortTypesEntry.instance();
}

} // namespace core
