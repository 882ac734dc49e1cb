// SPDX-License-Identifier: Apache-2.0
#include "core/descriptions/content_value.h"

#include <core/collections/value_array.h>
#include <core/context/arguments.h>
#include <core/descriptions/qualifier_values.h>
#include <core/descriptions/type_description.h>
#include <core/values/type_service.h>

namespace core {
namespace {

/// Names with commas between; blank for none.
std::vector<GUID> types_of_names(const Value& names) {
    const std::vector<wstring_view> items = list_argument(names, 0);
    std::vector<GUID> types;
    if (items.size() == 1 && items.front().empty())
        return types;
    for (const wstring_view name : items) {
        if (name.empty())
            parameter_value_mismatch(0);
        types.push_back(Type(name).id());
    }
    return types;
}

/// The id of a type. A Type value without a type is refused, since a description of it could not be read
/// back.
const GUID& id_of(const Type& type) {
    if (!type.isDefined())
        parameter_value_mismatch(0);
    return type.id();
}

std::vector<GUID> types_argument(const GenericValue& value) {
    if (value.isUndefined())
        return {};
    if (const Type* const type = value.asType(); type != nullptr)
        return {id_of(*type)};
    if (value.kind() == ValueKind::string)
        return types_of_names(value);
    const auto collection = object_argument<IValueCollection>(value, 0);
    std::vector<GUID> types;
    const auto walk = collection->enumerate();
    for (GenericValue item; walk->next(item);) {
        if (item.asType() == nullptr)
            parameter_value_mismatch(0);
        types.push_back(id_of(*item.asType()));
    }
    return types;
}

/// What `of` finds in the argument; a default content for Undefined.
template <class Content>
Content content_argument(const Value& argument, int param, const Content* (*of)(const Value&) noexcept) {
    if (argument.isUndefined())
        return {};
    const Content* const content = of(argument);
    if (content == nullptr)
        parameter_type_mismatch(param);
    return *content;
}

class TypeDescription : public ContentValue<TypeDescription, TypeDomain> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TypeDescription", u"ОписаниеТипов"},
        .type = kTypeDescriptionType,
        .object = "df56239d-9cc6-475b-a66f-30f430f90870"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_TYPEDESCRIPTION",
        .arguments = {0, 4},
    };
    using ContentValue::ContentValue;

    static GenericValue construct(std::span<GenericValue> arguments);
    static std::span<const Property<TypeDescription>> properties() noexcept;
    static std::span<const Method<TypeDescription>> methods() noexcept;

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

/// New TypeDescription of types and the qualifiers of Number, String and Date.
GenericValue TypeDescription::construct(std::span<GenericValue> arguments) {
    const auto at = [&](std::size_t index) -> const GenericValue& {
        return optional_argument(arguments, index);
    };
    TypeDomain domain(types_argument(at(0)));
    domain.setNumericQualifiers(content_argument(at(1), 1, &numeric_qualifiers_of));
    domain.setStringQualifiers(content_argument(at(2), 2, &string_qualifiers_of));
    domain.setDateQualifiers(content_argument(at(3), 3, &date_qualifiers_of));
    return make(std::move(domain));
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

/// An Array of the types.
GenericValue TypeDescription::types(std::span<GenericValue>) {
    std::vector<Value> types;
    for (const GUID& id : content().types())
        types.emplace_back(Type(id));
    return create_value_array(std::move(types)).query<IValue>();
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

std::span<const Property<TypeDescription>> TypeDescription::properties() noexcept {
    using T = TypeDescription;
    static constexpr Property<T> kTable[] = {
        {{u"NumberQualifiers", u"КвалификаторыЧисла"}, &T::numberQualifiers, nullptr, &kNumberQualifiersType},
        {{u"StringQualifiers", u"КвалификаторыСтроки"},
         &T::stringQualifiers,
         nullptr,
         &kStringQualifiersType},
        {{u"DateQualifiers", u"КвалификаторыДаты"}, &T::dateQualifiers, nullptr, &kDateQualifiersType},
    };
    return kTable;
}

std::span<const Method<TypeDescription>> TypeDescription::methods() noexcept {
    using T = TypeDescription;
    static constexpr Param kContains[] = {{.names = {u"Type", u"Тип"}}};
    static constexpr Param kAdjust[] = {
        {.byDefault = ParamDefault::undefined, .names = {u"Value", u"Значение"}}};
    static constexpr Method<T> kTable[] = {
        {{u"Types", u"Типы"}, {}, kFunction, &T::types, &kValueArrayType},
        {{u"ContainsType", u"СодержитТип"}, kContains, kFunction, &T::containsType, &kBooleanType},
        {{u"AdjustValue", u"ПривестиЗначение"}, kAdjust, kFunction, &T::adjustValue},
    };
    return kTable;
}

const ScriptClassEntry<TypeDescription> kTypeDescriptionEntry;

} // namespace

GenericValue create_type_description(TypeDomain domain) {
    return TypeDescription::make(std::move(domain));
}

const TypeDomain* type_domain_of(const Value& value) noexcept {
    return TypeDescription::contentOf(value);
}

} // namespace core
