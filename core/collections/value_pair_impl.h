// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/value_pair.h>
#include <core/persistence/persistence.h>
#include <core/values/generic_value.h>

namespace core {

struct KeyAndValue {
    Value key;
    Value value;
};

/// The body of a pair, as its object writes and reads it.
void serialize_pair(IOutPersistenceStorage* storage, const Value& key, const Value& value);
[[nodiscard]] KeyAndValue deserialize_pair(IInPersistenceStorage* storage);

} // namespace core
