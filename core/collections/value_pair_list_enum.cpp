// SPDX-License-Identifier: Apache-2.0
#include "core/collections/value_pair_impl.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/refcount.h>

#include <vector>

namespace core {
namespace {

constexpr GUID kValuePairListEnumClassId = "0342ac9d-ee78-4f88-847f-a3c8b97fa68d"_guid;

/// The pairs that a structure or a map held when a walk began. Shared: it outlives changes to the collection.
using ValuePairList = std::vector<InterfacePtr<IValuePair>>;
using ValuePairListPtr = CountedPtr<ValuePairList>;

/// A walk over such a list.
class ValuePairListEnum : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    ValuePairListEnum() = default;
    explicit ValuePairListEnum(ValuePairListPtr pairs) noexcept : pairs_(std::move(pairs)) {}

    bool next(GenericValue& out) override {
        if (!pairs_ || next_ == pairs_->size())
            return false;
        out = GenericValue((*pairs_)[next_++].query<IValue>());
        return true;
    }

  private:
    ValuePairListPtr pairs_;
    std::size_t next_ = 0;
};

const SCOM_Class<ValuePairListEnum, &kValuePairListEnumClassId> kValuePairListEnumEntry("ValuePairListEnum");

} // namespace

InterfacePtr<IValueEnum> enumerate_pairs(const PairTable& table) {
    const auto pairs = ValuePairListPtr::make();
    pairs->reserve(table.size());
    for (const PairTable::Pair& pair : table.pairs()) {
        if (pair.hash != 0)
            pairs->push_back(create_value_pair(pair.key, pair.value));
    }
    return make_object<ValuePairListEnum>(pairs);
}

} // namespace core
