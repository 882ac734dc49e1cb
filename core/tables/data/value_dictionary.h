// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/hash_index.h"

#include <core/values/value.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// Numbers different values, so that a column keeps each of them once. Code 0 is Undefined; the others follow
/// in the order of first appearance.
class ValueDictionary {
  public:
    using Code = HashIndex::Position;

    /// How many codes there are, that of Undefined among them.
    [[nodiscard]] std::size_t size() const noexcept { return values_.size(); }
    [[nodiscard]] const Value& operator[](Code code) const noexcept { return values_[code]; }
    [[nodiscard]] std::span<const Value> values() const noexcept { return values_; }

    [[nodiscard]] std::optional<Code> find(const Value& value) const noexcept;
    /// The code of a value, a new one when it is not here yet.
    [[nodiscard]] Code add(const Value& value);

  private:
    [[nodiscard]] Code search(std::uint64_t hash, const Value& value) const noexcept {
        return index_.find(hash, [&](Code code) { return values_[code].equals(value); });
    }

    std::vector<Value> values_{Value()};
    HashIndex index_; // of all values except Undefined
};

} // namespace core
