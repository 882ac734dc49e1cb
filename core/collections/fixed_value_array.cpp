// SPDX-License-Identifier: Apache-2.0
#include "core/collections/array_impl.h"

namespace core {

class FixedValueArray : public ArrayImpl<FixedValueArray, IValueSequence, &kFixedValueArrayClass> {
  public:
    using Interfaces = InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, IValueSequence,
                                     IValueCollection, IPersistableObject>;
    using ArrayImpl::ArrayImpl;

    static std::span<const Method<FixedValueArray>> methods() noexcept;

    IType* getType() const noexcept override;
};

InterfacePtr<IValueSequence> create_fixed_value_array(std::vector<Value> values) {
    return make_object<FixedValueArray>(std::move(values));
}

namespace {

/// New FixedArray of an array's elements.
GenericValue construct_fixed_array(std::span<GenericValue> arguments) {
    const auto source = arguments[0].query<IValueSequence>();
    if (!source)
        parameter_type_mismatch(0);
    return Value(make_object<FixedValueArray>(copy_values(*source)));
}

constexpr TypeInfo kFixedArrayInfo = {
    .id = kFixedValueArrayType,
    .valueClass = kFixedValueArrayClass,
    .names = kFixedValueArrayTypeString,
    .presentation = "IDS_TYPE_PRESENTATION_FIXEDVALUEARRAY",
    .construct = &construct_fixed_array,
    .arguments = {1, 1},
};

const SCOM_Class<FixedValueArray, &kFixedValueArrayClass> kFixedArrayEntry("FixedValueArray");
const TypeEntry<kFixedArrayInfo> kFixedArrayTypeEntry("FixedValueArray_Type");

} // namespace

std::span<const Method<FixedValueArray>> FixedValueArray::methods() noexcept {
    static constexpr Method<FixedValueArray> kMethods[] = {
        {kCollectTermCount, required(0), kFunction, &FixedValueArray::callCount, &kNumberType},
        {kCollectTermUBound, required(0), kFunction, &FixedValueArray::callUBound, &kNumberType},
        {kCollectTermGet, required(1), kFunction, &FixedValueArray::callGet},
        {kCollectTermFind, required(1), kFunction, &FixedValueArray::callFind},
    };
    return kMethods;
}

IType* FixedValueArray::getType() const noexcept {
    return TypeEntry<kFixedArrayInfo>::instance();
}

} // namespace core
