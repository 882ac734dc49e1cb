// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/collections/pair_table.h"

#include <core/collections/value_pair.h>
#include <core/context/iteration.h>
#include <core/persistence/persistence.h>

namespace core {

/// What a pair holds.
struct KeyAndValue {
    Value key;
    Value value;
};

/// Writes the body of a pair, as its object does.
void serialize_pair(IOutPersistenceStorage* storage, const Value& key, const Value& value);
/// Reads the body of a pair, as its object does.
[[nodiscard]] KeyAndValue deserialize_pair(IInPersistenceStorage* storage);

/// Begins a walk over the pairs that the table holds now.
[[nodiscard]] InterfacePtr<IValueEnum> enumerate_pairs(const PairTable& table);

} // namespace core
