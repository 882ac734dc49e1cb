// SPDX-License-Identifier: Apache-2.0
#include "host/library/number_functions.h"

#include "host/library/arguments.h"

#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/runtime/internal_class.h>

namespace core::script {
namespace {

class NumberFunctions : public IContextImpl<IContextDefImpl<NumberFunctions>>,
                        public ContextDefExtImpl<NumberFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<NumberFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<NumberFunctions>> methods() noexcept;

    GenericValue least(Args a) { return extreme(a, -1); }
    GenericValue most(Args a) { return extreme(a, 1); }
    GenericValue abs(Args a) { return GenericValue(number_reading(a, 0).abs()); }
    GenericValue floor(Args a) { return GenericValue(number_reading(a, 0).floor()); }
    GenericValue ceil(Args a) { return GenericValue(-(-number_reading(a, 0)).floor()); }
    GenericValue whole(Args a) {
        const Numeric number = number_reading(a, 0);
        return GenericValue(number.sign() < 0 ? -(-number).floor() : number.floor());
    }
    GenericValue power(Args a) {
        constexpr std::int64_t kMostDigits = 1'000'000; // no statement stands in such a call to stop it
        const Numeric base = number_reading(a, 0);
        const Numeric exponent = number_reading(a, 1);
        if (exponent.floor() != exponent || exponent.abs().compare(Numeric(kMostDigits)) > 0)
            parameter_value_mismatch(1);
        std::int64_t length = 0;
        std::int64_t precision = 0;
        base.lengthAndPrecision(length, precision);
        if (length > 1 && length * static_cast<std::int64_t>(exponent.abs()) > kMostDigits)
            parameter_value_mismatch(1);
        return GenericValue(base.pow(exponent));
    }

  private:
    /// The least or the largest of values of one kind that has an order.
    static GenericValue extreme(Args a, int wanted) {
        const GenericValue* found = &a[0];
        for (std::size_t i = 0; i < a.size(); ++i) {
            const ValueKind kind = a[i].kind();
            if (i > 0 && kind == ValueKind::undefined)
                continue; // left out
            if (kind != a[0].kind() || kind < ValueKind::boolean || kind > ValueKind::date)
                parameter_type_mismatch(static_cast<int>(i));
            if (compare_values(a[i], *found) * wanted > 0)
                found = &a[i];
        }
        return *found;
    }
};

constexpr Param kNumber[] = {named_param({u"Number", u"Число"})};
constexpr Param kPower[] = {named_param({u"Base", u"Основание"}), named_param({u"Exponent", u"Показатель"})};
constexpr Param kValues[] = {named_param({u"Value1", u"Значение1"}),
                             named_param({u"Value2", u"Значение2"}, ParamDefault::undefined),
                             named_param({u"Value3", u"Значение3"}, ParamDefault::undefined),
                             named_param({u"Value4", u"Значение4"}, ParamDefault::undefined),
                             named_param({u"Value5", u"Значение5"}, ParamDefault::undefined),
                             named_param({u"Value6", u"Значение6"}, ParamDefault::undefined),
                             named_param({u"Value7", u"Значение7"}, ParamDefault::undefined),
                             named_param({u"Value8", u"Значение8"}, ParamDefault::undefined)};

std::span<const Method<NumberFunctions>> NumberFunctions::methods() noexcept {
    using F = NumberFunctions;
    static constexpr Method<F> kMethods[] = {
        {{u"Min", u"Мин"}, kValues, kFunction, &F::least},
        {{u"Max", u"Макс"}, kValues, kFunction, &F::most},
        {{u"Abs", u"Модуль"}, kNumber, kFunction, &F::abs, &kNumberType},
        {{u"Int", u"Цел"}, kNumber, kFunction, &F::whole, &kNumberType},
        {{u"Floor", u"ОкрВниз"}, kNumber, kFunction, &F::floor, &kNumberType},
        {{u"Ceil", u"ОкрВверх"}, kNumber, kFunction, &F::ceil, &kNumberType},
        {{u"Pow", u"Степень"}, kPower, kFunction, &F::power, &kNumberType},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_number_functions() {
    return make_object<NumberFunctions>();
}

} // namespace core::script
