// SPDX-License-Identifier: Apache-2.0
#include "core/values/primitive_types.h"

#include <core/values/generic_value.h>
#include <core/values/type_object.h>

namespace core {
namespace {

constexpr Term kUndefined = {u"Undefined", u"Неопределено"};
constexpr Term kNull = {u"Null", u"Null"};
constexpr Term kBoolean = {u"Boolean", u"Булево"};
constexpr Term kNumber = {u"Number", u"Число"};
constexpr Term kString = {u"String", u"Строка"};
constexpr Term kDate = {u"Date", u"Дата"};
constexpr Term kType = {u"Type", u"Тип"};

constexpr TypeInfo info(const GUID& id, const wchar* const* names, const char* presentation,
                        Type::Code code) {
    return {.id = id, .names = names, .presentation = presentation, .code = code};
}

constexpr TypeInfo kTypes[] = {
    info("ee8d3e7c-f930-4a76-8aad-4ff9083a6ea6"_guid, kUndefined, "IDS_TYPE_PRESENTATION_UNDEFINED",
         Type::undefined),
    info("af40a278-63bc-478e-91a8-19e0d16b10b5"_guid, kNull, "IDS_TYPE_PRESENTATION_NULL", Type::null),
    info("5d4125ad-f6e7-4313-be32-f71d0ab60915"_guid, kBoolean, "IDS_TYPE_PRESENTATION_BOOLEAN",
         Type::boolean),
    info("b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec"_guid, kNumber, "IDS_TYPE_PRESENTATION_NUMERIC", Type::number),
    info("9b6abf8b-0173-48e5-b0a0-83b21fcf63c5"_guid, kString, "IDS_TYPE_PRESENTATION_STRING", Type::string),
    info("aae38c48-a877-411c-a6d3-fbaa1f83c4bd"_guid, kDate, "IDS_TYPE_PRESENTATION_DATE", Type::date),
    info("d47d59f8-73f0-481c-8b5e-f6384c0a4804"_guid, kType, "IDS_TYPE_PRESENT_TYPE", Type::type),
};

constinit TypeObject objects[] = {TypeObject(kTypes[0]), TypeObject(kTypes[1]), TypeObject(kTypes[2]),
                                  TypeObject(kTypes[3]), TypeObject(kTypes[4]), TypeObject(kTypes[5]),
                                  TypeObject(kTypes[6])};

} // namespace

IType* detail::primitive_type(ValueKind kind) noexcept {
    const auto index = static_cast<std::size_t>(kind);
    return index < std::size(objects) ? &objects[index] : nullptr;
}

} // namespace core
