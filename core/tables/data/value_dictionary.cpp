// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/value_dictionary.h"

#include "core/values/value_hash.h"

namespace core {
namespace {

/// The upper half of a hash, which the lowest bit does not spoil.
std::uint32_t tag_of(std::uint64_t hash) noexcept {
    return static_cast<std::uint32_t>(hash >> 32);
}

} // namespace

std::optional<ValueDictionary::Code> ValueDictionary::find(const Value& value) const noexcept {
    if (value.isUndefined())
        return Code{0};
    if (slots_.empty())
        return std::nullopt;
    const Code code = slots_[slotOf(value_table_hash(value), value)].code;
    return code != 0 ? std::optional(code) : std::nullopt;
}

ValueDictionary::Code ValueDictionary::add(const Value& value) {
    if (value.isUndefined())
        return 0;
    if (slots_.size() < 2 * values_.size())
        grow();
    const std::uint64_t hash = value_table_hash(value);
    Slot& slot = slots_[slotOf(hash, value)];
    if (slot.code == 0) {
        values_.push_back(value);
        slot = {tag_of(hash), static_cast<Code>(values_.size() - 1)};
    }
    return slot.code;
}

/// The slot that holds the value, or the free one where its search ends.
std::size_t ValueDictionary::slotOf(std::uint64_t hash, const Value& value) const noexcept {
    const std::uint32_t tag = tag_of(hash);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = tag & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.code == 0 || (slot.tag == tag && values_[slot.code].equals(value)))
            return i;
    }
}

void ValueDictionary::grow() {
    std::vector<Slot> slots(slots_.empty() ? 16 : 2 * slots_.size());
    const std::size_t mask = slots.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.code == 0)
            continue;
        std::size_t i = slot.tag & mask;
        while (slots[i].code != 0)
            i = (i + 1) & mask;
        slots[i] = slot;
    }
    slots_.swap(slots);
}

} // namespace core
