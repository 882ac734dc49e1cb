// SPDX-License-Identifier: Apache-2.0
#include "core/collections/array_impl.h"
#include "core/collections/parameters.h"

#include <core/context/arguments.h>
#include <core/context/errors.h>

namespace core {

constexpr std::int32_t kMaxDimensions = 32;
/// How many elements, those of all dimensions together, an array is made with at once.
constexpr std::int64_t kMaxElements = std::int64_t{1} << 24;

class ValueArray : public ArrayImpl<ValueArray, IValueArray> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueArrayTypeString,
        .type = kValueArrayType,
        .object = kValueArrayClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUEARRAY",
        .arguments = {0, kMaxDimensions},
    };
    using Interfaces = ScriptInterfaces<IValueArray, IValueSequence, IValueCollection, IPersistableObject>;
    using ArrayImpl::ArrayImpl;

    static GenericValue construct(std::span<GenericValue> arguments);
    static std::span<const Method<ValueArray>> methods() noexcept;

    // IValueArray
    void reserve(std::size_t count) override { values_.reserve(count); }
    void add(Value value) override { values_.push_back(std::move(value)); }
    void insert(std::size_t index, Value value) override {
        if (index > values_.size())
            throw_bad_index();
        values_.insert(at(index), std::move(value));
    }
    void set(std::size_t index, Value value) override {
        if (index >= values_.size())
            throw_bad_index();
        swap(values_[index], value);
    }
    void remove(std::size_t index) override {
        if (index >= values_.size())
            throw_bad_index();
        const Value dying = std::move(values_[index]); // what dies may look at this array
        values_.erase(at(index));
    }
    void clear() noexcept override { const std::vector<Value> dying = std::exchange(values_, {}); }

  private:
    std::vector<Value>::iterator at(std::size_t index) noexcept {
        return values_.begin() + static_cast<std::ptrdiff_t>(index);
    }

    GenericValue callInsert(std::span<GenericValue> arguments) {
        const std::int64_t index = index_argument(arguments[0], 0);
        if (index < 0)
            parameter_value_mismatch(0);
        insert(static_cast<std::size_t>(index), arguments[1]);
        return {};
    }
    GenericValue callAdd(std::span<GenericValue> arguments) {
        add(arguments[0]);
        return {};
    }
    GenericValue callDelete(std::span<GenericValue> arguments) {
        remove(indexOf(arguments[0]));
        return {};
    }
    GenericValue callClear(std::span<GenericValue>) {
        clear();
        return {};
    }
    GenericValue callSet(std::span<GenericValue> arguments) {
        set(indexOf(arguments[0]), arguments[1]);
        return {};
    }
};

InterfacePtr<IValueArray> create_value_array(std::vector<Value> values) {
    return make_object<ValueArray>(std::move(values));
}

namespace {

/// An array of the first size, each element of which is an array of the second, and so on.
Value make_dimensions(std::span<const std::int64_t> sizes) {
    std::vector<Value> values(static_cast<std::size_t>(sizes.front()));
    if (sizes.size() > 1) {
        for (Value& value : values)
            value = make_dimensions(sizes.subspan(1));
    }
    return Value(make_object<ValueArray>(std::move(values)));
}

} // namespace

/// New Array(), of an array's elements, or of one size or several.
GenericValue ValueArray::construct(std::span<GenericValue> arguments) {
    if (arguments.empty())
        return Value(make_object<ValueArray>());
    if (arguments.size() == 1) {
        if (const auto source = arguments[0].query<IValueSequence>())
            return Value(make_object<ValueArray>(copy_values(*source)));
    }
    std::vector<std::int64_t> sizes;
    std::int64_t arrays = 1; // of the dimension at hand
    std::int64_t elements = 0;
    for (const GenericValue& argument : arguments) {
        const auto param = static_cast<int>(sizes.size());
        sizes.push_back(index_argument(argument, param));
        if (sizes.back() < 0 || (arrays > 0 && sizes.back() > (kMaxElements - elements) / arrays))
            parameter_value_mismatch(param);
        arrays *= sizes.back();
        elements += arrays;
    }
    return make_dimensions(sizes);
}

std::span<const Method<ValueArray>> ValueArray::methods() noexcept {
    static constexpr Method<ValueArray> kTable[] = {
        {kCollectTermCount, required(0), kFunction, &ValueArray::callCount, &kNumberType},
        {kCollectTermUBound, required(0), kFunction, &ValueArray::callUBound, &kNumberType},
        {kCollectTermInsert, kOfIndexAndValue, kProcedure, &ValueArray::callInsert},
        {kCollectTermAdd, kOfValue, kProcedure, &ValueArray::callAdd},
        {kCollectTermRemove, kOfIndex, kProcedure, &ValueArray::callDelete},
        {kCollectTermClear, required(0), kProcedure, &ValueArray::callClear},
        {kCollectTermGet, kOfIndex, kFunction, &ValueArray::callGet},
        {kCollectTermSet, kOfIndexAndValue, kProcedure, &ValueArray::callSet},
        {kCollectTermFind, kOfValue, kFunction, &ValueArray::callFind},
    };
    return kTable;
}

namespace {

const ScriptClassEntry<ValueArray> kValueArrayEntry;

} // namespace
} // namespace core
