// SPDX-License-Identifier: Apache-2.0
#include "core/collections/value_pair_impl.h"

#include <core/collections/terms.h>
#include <core/context/script_object.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>

namespace core {

/// Only walks make pairs that scripts see: there is no New.
class ValuePair : public ScriptObject<ValuePair, IValuePair, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = kValuePairTypeString,
        .type = kValuePairType,
        .object = kValuePairClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUEPAIR",
    };

    explicit ValuePair(Value key = {}, Value value = {}) noexcept : pair_{std::move(key), std::move(value)} {}

    static std::span<const Property<ValuePair>> properties() noexcept {
        static constexpr Property<ValuePair> kTable[] = {
            {kKeyTerm, &ValuePair::getKey},
            {kValueTerm, &ValuePair::getValue},
        };
        return kTable;
    }

    // IValuePair
    const Value& key() const noexcept override { return pair_.key; }
    const Value& value() const noexcept override { return pair_.value; }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        serialize_pair(storage, pair_.key, pair_.value);
    }
    void deserialize(IInPersistenceStorage* storage) override { pair_ = deserialize_pair(storage); }

  private:
    GenericValue getKey() const { return pair_.key; }
    GenericValue getValue() const { return pair_.value; }

    KeyAndValue pair_;
};

InterfacePtr<IValuePair> create_value_pair(Value key, Value value) {
    return make_object<ValuePair>(std::move(key), std::move(value));
}

void serialize_pair(IOutPersistenceStorage* storage, const Value& key, const Value& value) {
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    serialize_value(storage, key);
    serialize_value(storage, value);
    out.putEndOfList();
}

KeyAndValue deserialize_pair(IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    in.getBeginOfList();
    KeyAndValue pair;
    pair.key = GenericValue::deserialize(storage);
    pair.value = GenericValue::deserialize(storage);
    in.getEndOfList();
    return pair;
}

namespace {

const ScriptClassEntry<ValuePair> kValuePairEntry;

} // namespace
} // namespace core
