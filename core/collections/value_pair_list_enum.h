// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/collections/pair_table.h"

#include <core/collections/value_pair.h>
#include <core/context/iteration.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/refcount.h>

#include <vector>

namespace core {

inline constexpr GUID kValuePairListEnumClass = "0342ac9d-ee78-4f88-847f-a3c8b97fa68d"_guid;

/// The pairs that a structure or a map held when a walk began. Shared: it outlives changes to the collection.
using ValuePairList = std::vector<InterfacePtr<IValuePair>>;
using ValuePairListPtr = CountedPtr<ValuePairList>;

/// A walk over such a list.
class ValuePairListEnum : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    ValuePairListEnum() = default;
    explicit ValuePairListEnum(ValuePairListPtr pairs) noexcept : pairs_(std::move(pairs)) {}

    bool next(GenericValue& out) override;

  private:
    ValuePairListPtr pairs_;
    std::size_t next_ = 0;
};

/// A walk over what the table holds now.
[[nodiscard]] InterfacePtr<IValueEnum> enumerate_pairs(const PairTable& table);

} // namespace core
