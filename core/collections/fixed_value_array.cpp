// SPDX-License-Identifier: Apache-2.0
#include "core/collections/array_impl.h"
#include "core/collections/parameters.h"

#include <core/context/errors.h>

namespace core {

class FixedValueArray : public ArrayImpl<FixedValueArray, IValueSequence> {
  public:
    static constexpr ScriptClass script = {
        .names = kFixedValueArrayTypeString,
        .type = kFixedValueArrayType,
        .object = kFixedValueArrayClass,
        .presentation = "IDS_TYPE_PRESENTATION_FIXEDVALUEARRAY",
        .arguments = {1, 1},
    };
    using ArrayImpl::ArrayImpl;

    /// New FixedArray of an array's elements.
    static GenericValue construct(std::span<GenericValue> arguments) {
        const auto source = object_argument<IValueSequence>(arguments[0], 0);
        return make_object<FixedValueArray>(copy_values(*source));
    }
    static std::span<const Method<FixedValueArray>> methods() noexcept {
        static constexpr Method<FixedValueArray> kTable[] = {
            {kCollectTermCount, required(0), kFunction, &FixedValueArray::callCount, &kNumberType},
            {kCollectTermUBound, required(0), kFunction, &FixedValueArray::callUBound, &kNumberType},
            {kCollectTermGet, kOfIndex, kFunction, &FixedValueArray::callGet},
            {kCollectTermFind, kOfValue, kFunction, &FixedValueArray::callFind},
        };
        return kTable;
    }
};

InterfacePtr<IValueSequence> create_fixed_value_array(std::vector<Value> values) {
    return make_object<FixedValueArray>(std::move(values));
}

namespace {

const ScriptClassEntry<FixedValueArray> kFixedValueArrayEntry;

} // namespace
} // namespace core
