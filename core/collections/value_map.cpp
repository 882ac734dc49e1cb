// SPDX-License-Identifier: Apache-2.0
#include "core/collections/pairs_impl.h"
#include "core/collections/parameters.h"
#include "core/values/value_hash.h"

#include <core/collections/value_map.h>

namespace core {
namespace {

PairTable::Pair* find_pair(PairTable& table, std::uint64_t hash, const Value& key) noexcept {
    return table.find(hash,
                      [&](const PairTable::Pair& pair) { return equal_by_table_hash(hash, pair.key, key); });
}

void put_pair(PairTable& table, const Value& key, Value&& value) {
    const std::uint64_t hash = value_table_hash(key);
    if (PairTable::Pair* const pair = find_pair(table, hash, key))
        swap(pair->value, value);
    else
        table.append(hash, key, std::move(value));
}

} // namespace

class ValueMap : public PairsImpl<ValueMap, IValueMap> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueMapTypeString,
        .type = kValueMapType,
        .object = kValueMapClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUEMAP",
        .arguments = {0, 0},
        .elements = &kValuePairType,
    };

    static std::span<const Method<ValueMap>> methods() noexcept;
    /// Keys that differ may be written alike, as dates with parts of a second are: the last one stays.
    static void take(PairTable& table, KeyAndValue&& pair) {
        put_pair(table, pair.key, std::move(pair.value));
    }

    // IValueMap
    void insert(const Value& key, Value value) override { put_pair(table_, key, std::move(value)); }
    const Value* find(const Value& key) const noexcept override {
        const PairTable::Pair* const pair = find_pair(table_, value_table_hash(key), key);
        return pair != nullptr ? &pair->value : nullptr;
    }
    bool remove(const Value& key) noexcept override {
        PairTable::Pair* const pair = find_pair(table_, value_table_hash(key), key);
        if (pair == nullptr)
            return false;
        table_.erase(*pair);
        return true;
    }

  private:
    GenericValue callInsert(std::span<GenericValue> arguments) {
        insert(arguments[0], arguments[1]);
        return {};
    }
    GenericValue callDelete(std::span<GenericValue> arguments) {
        remove(arguments[0]);
        return {};
    }
    GenericValue callGet(std::span<GenericValue> arguments) {
        const Value* const value = find(arguments[0]);
        return value != nullptr ? GenericValue(*value) : GenericValue();
    }
};

InterfacePtr<IValueMap> create_value_map() {
    return make_object<ValueMap>();
}

std::span<const Method<ValueMap>> ValueMap::methods() noexcept {
    static constexpr Method<ValueMap> kTable[] = {
        {kCollectTermCount, required(0), kFunction, &ValueMap::callCount, &kNumberType},
        {kCollectTermInsert, kOfKeyAndValue, kProcedure, &ValueMap::callInsert},
        {kCollectTermRemove, kOfKey, kProcedure, &ValueMap::callDelete},
        {kCollectTermClear, required(0), kProcedure, &ValueMap::callClear},
        {kCollectTermGet, kOfKey, kFunction, &ValueMap::callGet},
    };
    return kTable;
}

namespace {

const ScriptClassEntry<ValueMap> kValueMapEntry;

} // namespace
} // namespace core
