// SPDX-License-Identifier: Apache-2.0
#include "core/dates/standard_table.h"

#include <core/objects/standard_periods.h>

#include <array>
#include <cstddef>

namespace core {
namespace {

/// The variants of a table as the values of an enumeration.
template <class E, std::size_t count>
constexpr std::array<EnumerationItem, count> items_of(const StandardVariant<E> (&variants)[count]) {
    std::array<EnumerationItem, count> items{};
    for (std::size_t i = 0; i < count; ++i)
        items[i] = {variants[i].names, variants[i].presentation, static_cast<std::int32_t>(i)};
    return items;
}

constexpr auto kPeriods = items_of(variants_of(StandardPeriodVariant{}));
constexpr EnumerationInfo kPeriodsInfo = {
    .type = {.id = "eddee783-d0ac-42ab-91b4-530f5677f72b"_guid,
             .valueClass = "ea747f6c-6db4-4146-9c4c-d25e67260c3a"_guid,
             .names = {u"StandardPeriodVariant", u"ВариантСтандартногоПериода"},
             .presentation = "IDS_STANDARD_PERIOD_VARIANT"},
    .factory = "0208d388-bcd8-497a-9ac6-7ff369844d47"_guid,
    .items = kPeriods,
};
const EnumerationEntry<kPeriodsInfo> kPeriodsEntry("StandardPeriodVariant");

constexpr auto kBeginnings = items_of(variants_of(StandardBeginningDateVariant{}));
constexpr EnumerationInfo kBeginningsInfo = {
    .type = {.id = "687a9bcc-809a-435f-bb68-ad940353d36f"_guid,
             .valueClass = "bd60f9f6-9089-4cc0-a11b-7d1eb288077d"_guid,
             .names = {u"StandardBeginningDateVariant", u"ВариантСтандартнойДатыНачала"},
             .presentation = "IDS_STANDARD_BEGINNING_VARIANT"},
    .factory = "b03c22a8-1b26-416b-8fdb-f638bdfa2bfc"_guid,
    .items = kBeginnings,
};
const EnumerationEntry<kBeginningsInfo> kBeginningsEntry("StandardBeginningDateVariant");

} // namespace

Enumeration* script_enumeration(StandardPeriodVariant) noexcept {
    return kPeriodsEntry.instance();
}

Enumeration* script_enumeration(StandardBeginningDateVariant) noexcept {
    return kBeginningsEntry.instance();
}

} // namespace core
