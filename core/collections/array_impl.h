// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/collections/stored_count.h"

#include <core/collections/terms.h>
#include <core/collections/value_array.h>
#include <core/context/arguments.h>
#include <core/context/script_object.h>
#include <core/lists/list_out_stream.h>

#include <algorithm>

namespace core {

/// What both arrays are: values that can be read, found, walked, written and read back. `I` is what an array
/// offers to modules.
template <class T, class I>
class ArrayImpl : public ScriptObject<T, I, IValueCollection, IPersistableObject> {
  public:
    explicit ArrayImpl(std::vector<Value> values = {}) noexcept : values_(std::move(values)) {}

    // IValueSequence
    std::span<const Value> values() const noexcept override { return values_; }
    const Value& get(std::size_t index) const override {
        if (index >= values_.size())
            throw_bad_index();
        return values_[index];
    }
    std::optional<std::size_t> find(const Value& value) const noexcept override {
        const auto found = std::find(values_.begin(), values_.end(), value);
        return found != values_.end() ? std::optional(static_cast<std::size_t>(found - values_.begin()))
                                      : std::nullopt;
    }

    // IValueCollection
    InterfacePtr<IValueEnum> enumerate() override { return create_value_enum(values_); }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        ListOutStream& out = storage->listStream();
        out.putBeginOfList();
        out.put(static_cast<std::int64_t>(values_.size()));
        for (const Value& value : values_)
            serialize_value(storage, value);
        out.putEndOfList();
    }
    void deserialize(IInPersistenceStorage* storage) override {
        ListInStream& in = storage->listStream();
        in.getBeginOfList();
        std::vector<Value> values; // grows with what is really there, whatever the count says
        for (std::int64_t count = get_count(in); count > 0; --count)
            values.push_back(GenericValue::deserialize(storage));
        in.getEndOfList();
        values_.swap(values);
    }

  protected:
    ~ArrayImpl() = default;

    /// The index that an argument names; it must be that of an element.
    [[nodiscard]] std::size_t indexOf(const Value& argument) const {
        return position_argument(argument, 0, values_.size());
    }

    // methods
    GenericValue callCount(std::span<GenericValue>) { return values_.size(); }
    GenericValue callUBound(std::span<GenericValue>) { return static_cast<std::int64_t>(values_.size()) - 1; }
    GenericValue callGet(std::span<GenericValue> arguments) { return values_[indexOf(arguments[0])]; }
    GenericValue callFind(std::span<GenericValue> arguments) {
        const auto index = find(arguments[0]);
        return index ? GenericValue(*index) : GenericValue();
    }

    std::vector<Value> values_;
};

/// The values of a sequence as an array's own.
[[nodiscard]] inline std::vector<Value> copy_values(const IValueSequence& source) {
    return {source.values().begin(), source.values().end()};
}

} // namespace core
