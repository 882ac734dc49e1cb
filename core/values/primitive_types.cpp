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

constexpr TypeInfo info(const GUID& id, NamePair names, const char* presentation, Type::Code code) {
    return {.id = id, .names = names, .presentation = presentation, .code = code};
}

constexpr TypeInfo kTypes[] = {
    info(kUndefinedType, kUndefined, "IDS_TYPE_PRESENTATION_UNDEFINED", Type::undefined),
    info(kNullType, kNull, "IDS_TYPE_PRESENTATION_NULL", Type::null),
    info(kBooleanType, kBoolean, "IDS_TYPE_PRESENTATION_BOOLEAN", Type::boolean),
    info(kNumberType, kNumber, "IDS_TYPE_PRESENTATION_NUMERIC", Type::number),
    info(kStringType, kString, "IDS_TYPE_PRESENTATION_STRING", Type::string),
    info(kDateType, kDate, "IDS_TYPE_PRESENTATION_DATE", Type::date),
    info(kTypeType, kType, "IDS_TYPE_PRESENT_TYPE", Type::type),
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
