// SPDX-License-Identifier: Apache-2.0
#include "core/descriptions/arguments.h"
#include "core/descriptions/content_value.h"

#include <core/context/iteration.h>
#include <core/descriptions/qualifier_values.h>
#include <core/descriptions/type_description.h>
#include <core/runtime/error.h>
#include <core/strings/split.h>
#include <core/strings/trim.h>
#include <core/values/type_service.h>

namespace core {
namespace {

// The array lies above this layer and is made by its class id.
constexpr GUID kArrayClass = "1bb40b60-bbfa-11d5-a3c1-0050bae0a776"_guid;
constexpr GUID kArrayType = "51e7a0d2-530b-11d4-b98a-008048da3034"_guid;

constexpr GUID kClassId = "df56239d-9cc6-475b-a66f-30f430f90870"_guid;
constexpr Term kTypeDescription = {u"TypeDescription", u"ОписаниеТипов"};
constexpr Term kNumberQualifiers = {u"NumberQualifiers", u"КвалификаторыЧисла"};
constexpr Term kStringQualifiers = {u"StringQualifiers", u"КвалификаторыСтроки"};
constexpr Term kDateQualifiers = {u"DateQualifiers", u"КвалификаторыДаты"};
constexpr Term kTypes = {u"Types", u"Типы"};
constexpr Term kContainsType = {u"ContainsType", u"СодержитТип"};
constexpr Term kAdjustValue = {u"AdjustValue", u"ПривестиЗначение"};

/// Names with commas between; blank for none.
std::vector<GUID> types_of_names(wstring_view names) {
    std::vector<GUID> types;
    if (trim_all(names).empty())
        return types;
    for (const wstring_view item : string_tokenize(names, u",", EmptyTokens::keep)) {
        const wstring_view name = trim_all(item);
        if (name.empty())
            parameter_value_mismatch(0);
        types.push_back(Type(name).id());
    }
    return types;
}

std::vector<GUID> types_argument(const GenericValue& value) {
    if (value.isUndefined())
        return {};
    if (const Type* const type = value.asType(); type != nullptr)
        return {type->id()};
    if (const wstring_view* const names = value.asString(); names != nullptr)
        return types_of_names(*names);
    const auto collection = value.query<IValueCollection>();
    if (!collection)
        parameter_type_mismatch(0);
    std::vector<GUID> types;
    const auto walk = collection->enumerate();
    for (GenericValue item; walk->next(item);) {
        if (item.asType() == nullptr)
            parameter_value_mismatch(0);
        types.push_back(item.asType()->id());
    }
    return types;
}

class TypeDescription : public ContentValue<TypeDescription, TypeDomain, &kClassId> {
  public:
    using ContentValue::ContentValue;

    [[nodiscard]] static IType* type() noexcept;
    [[nodiscard]] static std::span<const Property<TypeDescription>> properties() noexcept;
    [[nodiscard]] static std::span<const Method<TypeDescription>> methods() noexcept;
    [[nodiscard]] static GenericValue construct(std::span<GenericValue> arguments) {
        TypeDomain domain(types_argument(argument(arguments, 0)));
        domain.setNumericQualifiers(content_argument(arguments, 1, &numeric_qualifiers_of));
        domain.setStringQualifiers(content_argument(arguments, 2, &string_qualifiers_of));
        domain.setDateQualifiers(content_argument(arguments, 3, &date_qualifiers_of));
        return make(std::move(domain));
    }

    /// The presentations of the types, with commas between.
    bool getString(wstring& out) const override;

  private:
    GenericValue numberQualifiers() const { return create_qualifiers_value(content().numericQualifiers()); }
    GenericValue stringQualifiers() const { return create_qualifiers_value(content().stringQualifiers()); }
    GenericValue dateQualifiers() const { return create_qualifiers_value(content().dateQualifiers()); }

    GenericValue types(std::span<GenericValue> arguments);
    GenericValue containsType(std::span<GenericValue> arguments);
    GenericValue adjustValue(std::span<GenericValue> arguments);
};

constexpr TypeInfo kInfo = {.id = kTypeDescriptionType,
                            .valueClass = kClassId,
                            .names = kTypeDescription,
                            .presentation = "IDS_TYPE_PRESENTATION_TYPEDESCRIPTION",
                            .construct = &TypeDescription::construct,
                            .arguments = {0, 4}};
const TypeEntry<kInfo> kTypeEntry("TypeDescription_Type");
const SCOM_ClassEntryInit<TypeDescription, &kClassId> kClassEntry("TypeDescription");

IType* TypeDescription::type() noexcept {
    return kTypeEntry.instance();
}

std::span<const Property<TypeDescription>> TypeDescription::properties() noexcept {
    using D = TypeDescription;
    static constexpr Property<D> table[] = {
        {.names = kNumberQualifiers, .get = &D::numberQualifiers, .type = &kNumberQualifiersType},
        {.names = kStringQualifiers, .get = &D::stringQualifiers, .type = &kStringQualifiersType},
        {.names = kDateQualifiers, .get = &D::dateQualifiers, .type = &kDateQualifiersType},
    };
    return table;
}

std::span<const Method<TypeDescription>> TypeDescription::methods() noexcept {
    using D = TypeDescription;
    static constexpr Param adjustParams[] = {{ParamDefault::undefined}};
    static constexpr Method<D> table[] = {
        {kTypes, {}, kFunction, &D::types, &kArrayType},
        {kContainsType, required(1), kFunction, &D::containsType, &kBooleanType},
        {kAdjustValue, adjustParams, kFunction, &D::adjustValue},
    };
    return table;
}

bool TypeDescription::getString(wstring& out) const {
    auto* const service = get_service<ITypeValueService>();
    out.clear();
    for (const GUID& id : content().types()) {
        if (!out.empty())
            out += u", ";
        const IType* const type = service != nullptr ? service->findType(id) : nullptr;
        out += type != nullptr ? type->presentation() : to_string(id);
    }
    return true;
}

/// An Array of the types. TypeException when one of them is not registered.
GenericValue TypeDescription::types(std::span<GenericValue>) {
    const auto array = create_object<IContext_>(kArrayClass);
    if (!array)
        throw_error<TypeException>("IDS_TYPEERROR_TYPENOTDEFINED", {to_string(kArrayType)});
    const int add = array->findMethod(u"Add");
    for (const GUID& id : content().types()) {
        std::vector<GenericValue> arguments = {Type(id)};
        array->call(add, nullptr, &arguments);
    }
    return array.query<IValue>();
}

GenericValue TypeDescription::containsType(std::span<GenericValue> arguments) {
    const Type* const type = arguments[0].asType();
    if (type == nullptr)
        parameter_type_mismatch(0);
    return content().containsType(type->id());
}

GenericValue TypeDescription::adjustValue(std::span<GenericValue> arguments) {
    return content().adjust(std::move(arguments[0]));
}

} // namespace

GenericValue create_type_description(TypeDomain domain) {
    return TypeDescription::make(std::move(domain));
}

const TypeDomain* type_domain_of(const Value& value) noexcept {
    return TypeDescription::of(value);
}

} // namespace core
