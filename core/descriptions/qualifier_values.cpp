// SPDX-License-Identifier: Apache-2.0
#include "core/descriptions/arguments.h"
#include "core/descriptions/content_value.h"
#include "core/descriptions/enumerations.h"

#include <core/descriptions/qualifier_values.h>

namespace core {
namespace {

// Number

constexpr GUID kNumberQualifiersClass = "cd88cbf7-ac2f-4cfd-879b-4c38eca9ea00"_guid;
constexpr Term kNumberQualifiers = {u"NumberQualifiers", u"КвалификаторыЧисла"};
constexpr Term kDigits = {u"Digits", u"Разрядность"};
constexpr Term kFractionDigits = {u"FractionDigits", u"РазрядностьДробнойЧасти"};
constexpr Term kAllowedSign = {u"AllowedSign", u"ДопустимыйЗнак"};

class NumberQualifiersValue
    : public ContentValue<NumberQualifiersValue, NumericQualifiers, &kNumberQualifiersClass> {
  public:
    using ContentValue::ContentValue;

    [[nodiscard]] static IType* type() noexcept;
    [[nodiscard]] static std::span<const Property<NumberQualifiersValue>> properties() noexcept;
    [[nodiscard]] static GenericValue construct(std::span<GenericValue> arguments) {
        return make({count_argument(arguments, 0), count_argument(arguments, 1),
                     choice_argument(arguments, 2, allowed_sign(), 0) != 0});
    }

  private:
    GenericValue digits() const { return content().digits(); }
    GenericValue fractionDigits() const { return content().fractionDigits(); }
    GenericValue allowedSign() const { return allowed_sign().value(content().nonnegative()); }
};

constexpr TypeInfo kNumberInfo = {.id = kNumberQualifiersType,
                                  .valueClass = kNumberQualifiersClass,
                                  .names = kNumberQualifiers,
                                  .presentation = "IDS_TYPE_PRESENTATION_NUMBERQUALIFIERS",
                                  .construct = &NumberQualifiersValue::construct,
                                  .arguments = {0, 3}};
const TypeEntry<kNumberInfo> kNumberEntry("NumberQualifiers_Type");
const SCOM_ClassEntryInit<NumberQualifiersValue, &kNumberQualifiersClass> kNumberClass("NumberQualifiers");

IType* NumberQualifiersValue::type() noexcept {
    return kNumberEntry.instance();
}

std::span<const Property<NumberQualifiersValue>> NumberQualifiersValue::properties() noexcept {
    using V = NumberQualifiersValue;
    static constexpr Property<V> table[] = {
        {.names = kDigits, .get = &V::digits, .type = &kNumberType},
        {.names = kFractionDigits, .get = &V::fractionDigits, .type = &kNumberType},
        {.names = kAllowedSign, .get = &V::allowedSign, .type = &kAllowedSignType},
    };
    return table;
}

// String

constexpr GUID kStringQualifiersClass = "f8223f74-5b8a-4a59-87a2-0b94bbe4855f"_guid;
constexpr Term kStringQualifiers = {u"StringQualifiers", u"КвалификаторыСтроки"};
constexpr Term kLength = {u"Length", u"Длина"};
constexpr Term kAllowedLength = {u"AllowedLength", u"ДопустимаяДлина"};

class StringQualifiersValue
    : public ContentValue<StringQualifiersValue, StringQualifiers, &kStringQualifiersClass> {
  public:
    using ContentValue::ContentValue;

    [[nodiscard]] static IType* type() noexcept;
    [[nodiscard]] static std::span<const Property<StringQualifiersValue>> properties() noexcept;
    [[nodiscard]] static GenericValue construct(std::span<GenericValue> arguments) {
        return make({count_argument(arguments, 0), choice_argument(arguments, 1, allowed_length(), 1) != 0});
    }

  private:
    GenericValue length() const { return content().length(); }
    GenericValue allowedLength() const { return allowed_length().value(content().varying()); }
};

constexpr TypeInfo kStringInfo = {.id = kStringQualifiersType,
                                  .valueClass = kStringQualifiersClass,
                                  .names = kStringQualifiers,
                                  .presentation = "IDS_TYPE_PRESENTATION_STRINGQUALIFIERS",
                                  .construct = &StringQualifiersValue::construct,
                                  .arguments = {0, 2}};
const TypeEntry<kStringInfo> kStringEntry("StringQualifiers_Type");
const SCOM_ClassEntryInit<StringQualifiersValue, &kStringQualifiersClass> kStringClass("StringQualifiers");

IType* StringQualifiersValue::type() noexcept {
    return kStringEntry.instance();
}

std::span<const Property<StringQualifiersValue>> StringQualifiersValue::properties() noexcept {
    using V = StringQualifiersValue;
    static constexpr Property<V> table[] = {
        {.names = kLength, .get = &V::length, .type = &kNumberType},
        {.names = kAllowedLength, .get = &V::allowedLength, .type = &kAllowedLengthType},
    };
    return table;
}

// Date

constexpr GUID kDateQualifiersClass = "e9febaa1-0051-432e-be4b-bb87e1af08c5"_guid;
constexpr Term kDateQualifiers = {u"DateQualifiers", u"КвалификаторыДаты"};
constexpr Term kDateFractions = {u"DateFractions", u"ЧастиДаты"};

class DateQualifiersValue : public ContentValue<DateQualifiersValue, DateQualifiers, &kDateQualifiersClass> {
  public:
    using ContentValue::ContentValue;

    [[nodiscard]] static IType* type() noexcept;
    [[nodiscard]] static std::span<const Property<DateQualifiersValue>> properties() noexcept;
    [[nodiscard]] static GenericValue construct(std::span<GenericValue> arguments) {
        return make(
            DateQualifiers(static_cast<DateFractions>(choice_argument(arguments, 0, date_fractions(), 3))));
    }

  private:
    GenericValue dateFractions() const {
        return date_fractions().value(static_cast<std::int32_t>(content().fractions()));
    }
};

constexpr TypeInfo kDateInfo = {.id = kDateQualifiersType,
                                .valueClass = kDateQualifiersClass,
                                .names = kDateQualifiers,
                                .presentation = "IDS_TYPE_PRESENTATION_DATEQUALIFIERS",
                                .construct = &DateQualifiersValue::construct,
                                .arguments = {0, 1}};
const TypeEntry<kDateInfo> kDateEntry("DateQualifiers_Type");
const SCOM_ClassEntryInit<DateQualifiersValue, &kDateQualifiersClass> kDateClass("DateQualifiers");

IType* DateQualifiersValue::type() noexcept {
    return kDateEntry.instance();
}

std::span<const Property<DateQualifiersValue>> DateQualifiersValue::properties() noexcept {
    using V = DateQualifiersValue;
    static constexpr Property<V> table[] = {
        {.names = kDateFractions, .get = &V::dateFractions, .type = &kDateFractionsType},
    };
    return table;
}

} // namespace

GenericValue create_qualifiers_value(const NumericQualifiers& qualifiers) {
    return NumberQualifiersValue::make(qualifiers);
}

GenericValue create_qualifiers_value(const StringQualifiers& qualifiers) {
    return StringQualifiersValue::make(qualifiers);
}

GenericValue create_qualifiers_value(const DateQualifiers& qualifiers) {
    return DateQualifiersValue::make(qualifiers);
}

const NumericQualifiers* numeric_qualifiers_of(const Value& value) noexcept {
    return NumberQualifiersValue::of(value);
}

const StringQualifiers* string_qualifiers_of(const Value& value) noexcept {
    return StringQualifiersValue::of(value);
}

const DateQualifiers* date_qualifiers_of(const Value& value) noexcept {
    return DateQualifiersValue::of(value);
}

} // namespace core
