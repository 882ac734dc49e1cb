// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/value_dictionary.h"

namespace core {

std::optional<ValueDictionary::Code> ValueDictionary::find(const Value& value) const noexcept {
    if (value.isUndefined())
        return Code{0};
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
    values_.push_back(value);
    index_.add(hash, code);
    return code;
}

} // namespace core
