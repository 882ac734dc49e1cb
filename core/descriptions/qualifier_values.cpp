// SPDX-License-Identifier: Apache-2.0
#include "core/descriptions/content_value.h"
#include "core/descriptions/enumerations.h"

#include <core/descriptions/qualifier_values.h>

namespace core {
namespace {

class NumberQualifiersValue : public ContentValue<NumberQualifiersValue, NumericQualifiers> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"NumberQualifiers", u"КвалификаторыЧисла"},
        .type = kNumberQualifiersType,
        .object = "cd88cbf7-ac2f-4cfd-879b-4c38eca9ea00"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_NUMBERQUALIFIERS",
        .arguments = {0, 3},
    };
    using ContentValue::ContentValue;

    static GenericValue construct(std::span<GenericValue> arguments) {
        return make({count_argument(optional_argument(arguments, 0), 0),
                     count_argument(optional_argument(arguments, 1), 1),
                     choice_argument(optional_argument(arguments, 2), 2, allowed_sign(), 0) != 0});
    }
    static std::span<const Property<NumberQualifiersValue>> properties() noexcept {
        using T = NumberQualifiersValue;
        static constexpr Property<T> kTable[] = {
            {{u"Digits", u"Разрядность"}, &T::digits, nullptr, &kNumberType},
            {{u"FractionDigits", u"РазрядностьДробнойЧасти"}, &T::fractionDigits, nullptr, &kNumberType},
            {{u"AllowedSign", u"ДопустимыйЗнак"}, &T::allowedSign, nullptr, &kAllowedSignType},
        };
        return kTable;
    }

  private:
    GenericValue digits() const { return content().digits(); }
    GenericValue fractionDigits() const { return content().fractionDigits(); }
    GenericValue allowedSign() const { return allowed_sign().value(content().nonnegative()); }
};

class StringQualifiersValue : public ContentValue<StringQualifiersValue, StringQualifiers> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"StringQualifiers", u"КвалификаторыСтроки"},
        .type = kStringQualifiersType,
        .object = "f8223f74-5b8a-4a59-87a2-0b94bbe4855f"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_STRINGQUALIFIERS",
        .arguments = {0, 2},
    };
    using ContentValue::ContentValue;

    static GenericValue construct(std::span<GenericValue> arguments) {
        return make({count_argument(optional_argument(arguments, 0), 0),
                     choice_argument(optional_argument(arguments, 1), 1, allowed_length(), 1) != 0});
    }
    static std::span<const Property<StringQualifiersValue>> properties() noexcept {
        using T = StringQualifiersValue;
        static constexpr Property<T> kTable[] = {
            {{u"Length", u"Длина"}, &T::length, nullptr, &kNumberType},
            {{u"AllowedLength", u"ДопустимаяДлина"}, &T::allowedLength, nullptr, &kAllowedLengthType},
        };
        return kTable;
    }

  private:
    GenericValue length() const { return content().length(); }
    GenericValue allowedLength() const { return allowed_length().value(content().varying()); }
};

class DateQualifiersValue : public ContentValue<DateQualifiersValue, DateQualifiers> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"DateQualifiers", u"КвалификаторыДаты"},
        .type = kDateQualifiersType,
        .object = "e9febaa1-0051-432e-be4b-bb87e1af08c5"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_DATEQUALIFIERS",
        .arguments = {0, 1},
    };
    using ContentValue::ContentValue;

    static GenericValue construct(std::span<GenericValue> arguments) {
        const auto fractions = choice_argument(optional_argument(arguments, 0), 0, date_fractions(), 3);
        return make(DateQualifiers(static_cast<DateFractions>(fractions)));
    }
    static std::span<const Property<DateQualifiersValue>> properties() noexcept {
        using T = DateQualifiersValue;
        static constexpr Property<T> kTable[] = {
            {{u"DateFractions", u"ЧастиДаты"}, &T::dateFractions, nullptr, &kDateFractionsType},
        };
        return kTable;
    }

  private:
    GenericValue dateFractions() const {
        return date_fractions().value(static_cast<std::int32_t>(content().fractions()));
    }
};

const ScriptClassEntry<NumberQualifiersValue> kNumberEntry;
const ScriptClassEntry<StringQualifiersValue> kStringEntry;
const ScriptClassEntry<DateQualifiersValue> kDateEntry;

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
    return NumberQualifiersValue::contentOf(value);
}

const StringQualifiers* string_qualifiers_of(const Value& value) noexcept {
    return StringQualifiersValue::contentOf(value);
}

const DateQualifiers* date_qualifiers_of(const Value& value) noexcept {
    return DateQualifiersValue::contentOf(value);
}

} // namespace core
