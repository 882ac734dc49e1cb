// SPDX-License-Identifier: Apache-2.0
#include <core/tables/joins.h>
#include <core/tables/terms.h>

namespace core {
namespace {

constexpr std::int32_t number(JoinKind kind) noexcept {
    return static_cast<std::int32_t>(kind);
}

constexpr EnumerationItem kItems[] = {
    {kJoinKindsInner, "IDS_CORE_JOIN_KINDS_INNER", number(JoinKind::inner)},
    {kJoinKindsLeft, "IDS_CORE_JOIN_KINDS_LEFT", number(JoinKind::left)},
    {kJoinKindsFull, "IDS_CORE_JOIN_KINDS_FULL", number(JoinKind::full)},
    {kJoinKindsSemi, "IDS_CORE_JOIN_KINDS_SEMI", number(JoinKind::semi)},
    {kJoinKindsAnti, "IDS_CORE_JOIN_KINDS_ANTI", number(JoinKind::anti)},
};
constexpr EnumerationInfo kJoinKindsInfo = {
    .type = {.id = "a6f08088-0ab4-4d9a-9275-136f67f4b2eb"_guid,
             .valueClass = "42d58545-dc13-4120-8b98-b4f3d6ca7c77"_guid,
             .names = kJoinKindsTerm,
             .presentation = "IDS_CORE_JOIN_KINDS"},
    .factory = "b5fb8e94-e9f1-4042-ad31-fbd08564a4af"_guid,
    .items = kItems,
};
const EnumerationEntry<kJoinKindsInfo> kJoinKindsEntry("JoinKinds");

} // namespace

Enumeration* script_enumeration(JoinKind) noexcept {
    return kJoinKindsEntry.instance();
}

} // namespace core
