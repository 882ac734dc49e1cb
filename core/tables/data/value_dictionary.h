// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/hash_index.h"
#include "core/values/value_hash.h"

#include <algorithm>
#include <array>
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
    /// Does the same for many values, of which `value_at(position)` gives a reference, and stores their
    /// codes. Values lie anywhere in memory, so those ahead are fetched while others are looked up.
    template <class ValueAt>
    void add(std::span<Code> codes, ValueAt value_at);

  private:
    [[nodiscard]] Code search(std::uint64_t hash, const Value& value) const noexcept {
        return index_.find(hash, [&](Code code) { return values_[code].equals(value); });
    }
    [[nodiscard]] Code addNew(std::uint64_t hash, const Value& value);
    /// Where byAddress_ has the code of the value with this object, if it has.
    [[nodiscard]] std::size_t slotOf(const IValue* object) const noexcept {
        const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(object));
        return static_cast<std::size_t>(address * 0x9E3779B97F4A7C15 >> 32) & (byAddress_.size() - 1);
    }
    void growByAddress();

    std::vector<Value> values_{Value()};
    HashIndex index_; // of all values except Undefined
    // Values that repeat are often one object, which is known by its address: nobody has to look into it. A
    // power of two of codes; where two objects want one place, the later one has it. Numbers may have no
    // object.
    std::vector<Code> byAddress_{0};
};

template <class ValueAt>
void ValueDictionary::add(std::span<Code> codes, ValueAt value_at) {
    constexpr std::size_t kAhead = 16;
    std::array<std::uint64_t, kAhead> hashes;
    const auto fetch = [&](std::size_t begin) {
        for (std::size_t i = begin; i < std::min(begin + kAhead, codes.size()); ++i)
            __builtin_prefetch(value_at(i).object());
    };
    fetch(0);
    for (std::size_t begin = 0; begin < codes.size(); begin += kAhead) {
        const std::size_t count = std::min(kAhead, codes.size() - begin);
        fetch(begin + kAhead);
        for (std::size_t i = 0; i < count; ++i) {
            hashes[i] = value_table_hash(value_at(begin + i));
            index_.prefetch(hashes[i]);
        }
        for (std::size_t i = 0; i < count; ++i) {
            const Value& value = value_at(begin + i);
            Code code = 0;
            if (!value.isUndefined()) {
                code = search(hashes[i], value);
                if (code == HashIndex::kNone)
                    code = addNew(hashes[i], value);
            }
            codes[begin + i] = code;
        }
    }
}

} // namespace core
