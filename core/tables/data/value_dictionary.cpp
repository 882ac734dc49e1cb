// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/value_dictionary.h"

#include <bit>

namespace core {

std::optional<ValueDictionary::Code> ValueDictionary::find(const Value& value) const noexcept {
    if (value.isUndefined())
        return Code{0};
    if (const IValue* const object = value.object()) {
        const Code same = byAddress_[slotOf(object)];
        if (values_[same].object() == object)
            return same;
    }
    const Code code = search(value_table_hash(value), value);
    return code != HashIndex::kNone ? std::optional(code) : std::nullopt;
}

ValueDictionary::Code ValueDictionary::add(const Value& value) {
    if (value.isUndefined())
        return 0;
    const std::uint64_t hash = value_table_hash(value);
    const Code known = search(hash, value);
    return known != HashIndex::kNone ? known : addNew(hash, value);
}

ValueDictionary::Code ValueDictionary::addNew(std::uint64_t hash, const Value& value) {
    const auto code = static_cast<Code>(values_.size());
    index_.reserve(index_.size() + 1);
    if (byAddress_.size() < 2 * (values_.size() + 1))
        growByAddress();
    values_.push_back(value);
    index_.add(hash, code);
    byAddress_[slotOf(value.object())] = code;
    return code;
}

void ValueDictionary::growByAddress() {
    byAddress_.assign(4 * std::bit_ceil(values_.size()), 0);
    for (std::size_t code = 1; code < values_.size(); ++code)
        byAddress_[slotOf(values_[code].object())] = static_cast<Code>(code);
}

} // namespace core
