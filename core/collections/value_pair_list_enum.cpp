// SPDX-License-Identifier: Apache-2.0
#include "core/collections/value_pair_list_enum.h"

#include <core/runtime/class_entry.h>

namespace core {

bool ValuePairListEnum::next(GenericValue& out) {
    if (!pairs_ || next_ == pairs_->size())
        return false;
    out = GenericValue((*pairs_)[next_++].query<IValue>());
    return true;
}

InterfacePtr<IValueEnum> enumerate_pairs(const PairTable& table) {
    const auto pairs = ValuePairListPtr::make();
    pairs->reserve(table.size());
    for (const PairTable::Pair& pair : table.row()) {
        if (pair.hash != 0)
            pairs->push_back(create_value_pair(pair.key, pair.value));
    }
    return make_object<ValuePairListEnum>(pairs);
}

namespace {

const SCOM_Class<ValuePairListEnum, &kValuePairListEnumClass> kEntry("ValuePairListEnum");

} // namespace
} // namespace core
