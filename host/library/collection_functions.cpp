// SPDX-License-Identifier: Apache-2.0
#include "host/library/collection_functions.h"

#include "host/library/arguments.h"

#include <core/collections/native_values.h>
#include <core/context/callable.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/context/iteration.h>
#include <core/runtime/internal_class.h>

#include <algorithm>
#include <numeric>

namespace core::script {
namespace {

/// Calls `take` with each element that the collection has now. A procedure may change the collection
/// meanwhile.
template <class Take>
void walk(const GenericValue& collection, int param, Take take) {
    const auto walkable = object_argument<IValueCollection>(collection, param);
    GenericValue element;
    for (const auto elements = walkable->enumerate(); elements->next(element);)
        take(element);
}

class CollectionFunctions : public IContextImpl<IContextDefImpl<CollectionFunctions>>,
                            public ContextDefExtImpl<CollectionFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<CollectionFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<CollectionFunctions>> methods() noexcept;

    /// All keys are made before the array changes, so that a key that fails changes nothing.
    GenericValue sort(Args a) {
        const auto array = object_argument<IValueArray>(a[0], 0);
        const std::vector<Value> values(array->values().begin(), array->values().end());
        std::vector<Value> keys = values;
        if (given(a[1])) {
            const auto key = callable_argument(a[1], 1, 1);
            for (Value& value : keys) {
                const GenericValue argument[] = {GenericValue(value)};
                value = key->call(argument);
            }
        }
        const bool descending = flag_argument(a[2], 2);
        std::vector<std::size_t> order(values.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::ranges::stable_sort(order, [&](std::size_t left, std::size_t right) {
            return descending ? compare_values(keys[right], keys[left]) < 0
                              : compare_values(keys[left], keys[right]) < 0;
        });
        array->reserve(order.size());
        array->clear();
        for (const std::size_t position : order)
            array->add(values[position]);
        return {};
    }
    GenericValue map(Args a) {
        const auto function = callable_argument(a[1], 1, 1);
        std::vector<Value> results;
        walk(a[0], 0, [&](const GenericValue& element) { results.push_back(function->call({&element, 1})); });
        return GenericValue(create_value_array(std::move(results)).query<IValue>());
    }
    GenericValue filter(Args a) {
        const auto function = callable_argument(a[1], 1, 1);
        std::vector<Value> kept;
        walk(a[0], 0, [&](const GenericValue& element) {
            bool wanted = false;
            if (!function->call({&element, 1}).getBoolean(wanted))
                parameter_value_mismatch(1);
            if (wanted)
                kept.push_back(element);
        });
        return GenericValue(create_value_array(std::move(kept)).query<IValue>());
    }
    GenericValue reduce(Args a) {
        const auto function = callable_argument(a[1], 1, 2);
        GenericValue arguments[] = {a[2], GenericValue()};
        walk(a[0], 0, [&](const GenericValue& element) {
            arguments[1] = element;
            arguments[0] = function->call(arguments);
        });
        return arguments[0];
    }
};

constexpr Param kCollection = named_param({u"Collection", u"Коллекция"});
constexpr Param kFunctionParam = named_param({u"Function", u"Функция"});
constexpr Param kSort[] = {named_param({u"Array", u"Массив"}),
                           named_param({u"Key", u"Ключ"}, ParamDefault::undefined),
                           named_param({u"Descending", u"ПоУбыванию"}, ParamDefault::falseValue)};
constexpr Param kEach[] = {kCollection, kFunctionParam};
constexpr Param kReduce[] = {kCollection, kFunctionParam, named_param({u"Start", u"Начало"})};

std::span<const Method<CollectionFunctions>> CollectionFunctions::methods() noexcept {
    using F = CollectionFunctions;
    static constexpr Method<F> kMethods[] = {
        {{u"Sort", u"Сортировать"}, kSort, kProcedure, &F::sort},
        {{u"Map", u"Отобразить"}, kEach, kFunction, &F::map, &kValueArrayType},
        {{u"Filter", u"Отобрать"}, kEach, kFunction, &F::filter, &kValueArrayType},
        {{u"Reduce", u"Свернуть"}, kReduce, kFunction, &F::reduce},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_collection_functions() {
    return make_object<CollectionFunctions>();
}

} // namespace core::script
