// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/types/type_domain_pattern.h>

#include <algorithm>
#include <bit>

namespace core {
namespace {

/// In the order of ValueKind.
constexpr GUID kPrimitives[] = {kUndefinedType, kNullType, kBooleanType, kNumberType,
                                kStringType,    kDateType, kTypeType};

/// The kind whose type has the id; `object` for every other id.
ValueKind kind_of(const GUID& type) noexcept {
    return static_cast<ValueKind>(std::ranges::find(kPrimitives, type) - kPrimitives);
}

} // namespace

void TypeDomainPattern::addType(const GUID& type) {
    addTypes({&type, 1});
}

void TypeDomainPattern::addTypes(std::span<const GUID> types) {
    std::uint32_t primitives = primitives_;
    std::vector<GUID> others;
    for (const GUID& type : types) {
        const ValueKind kind = kind_of(type);
        primitives |= bit(kind);
        if (kind == ValueKind::object)
            others.push_back(type);
    }
    if (!others.empty()) {
        others.insert(others.end(), others_.begin(), others_.end());
        std::ranges::sort(others);
        others.erase(std::unique(others.begin(), others.end()), others.end());
        others_ = std::move(others);
    }
    primitives_ = primitives;
}

void TypeDomainPattern::merge(const TypeDomainPattern& other) {
    if (isEmpty() || other.isEmpty()) { // what admits everything stays so
        *this = TypeDomainPattern();
        return;
    }
    const auto merged = [&](ValueKind kind, auto mine, const auto& others) {
        return !other.containsType(kind) ? mine : !containsType(kind) ? others : mine.merge(others);
    };
    const NumericQualifiers numeric = merged(ValueKind::number, numeric_, other.numeric_);
    const StringQualifiers string = merged(ValueKind::string, string_, other.string_);
    const DateQualifiers date = merged(ValueKind::date, date_, other.date_);
    addTypes(other.others_);
    primitives_ |= other.primitives_;
    numeric_ = numeric;
    string_ = string;
    date_ = date;
}

std::size_t TypeDomainPattern::size() const noexcept {
    return static_cast<std::size_t>(std::popcount(primitives_)) + others_.size();
}

bool TypeDomainPattern::containsType(const GUID& type) const noexcept {
    const ValueKind kind = kind_of(type);
    return kind != ValueKind::object ? containsType(kind) : containsObjectType(type);
}

bool TypeDomainPattern::containsObjectType(const GUID& type) const noexcept {
    return std::ranges::binary_search(others_, type);
}

std::vector<GUID> TypeDomainPattern::types() const {
    std::vector<GUID> types;
    types.reserve(size());
    for (const GUID& type : kPrimitives) {
        if (containsType(kind_of(type)))
            types.push_back(type);
    }
    types.insert(types.end(), others_.begin(), others_.end());
    return types;
}

bool TypeDomainPattern::operator==(const TypeDomainPattern& other) const noexcept {
    return primitives_ == other.primitives_ && others_ == other.others_ &&
           (!containsType(ValueKind::number) || numeric_ == other.numeric_) &&
           (!containsType(ValueKind::string) || string_ == other.string_) &&
           (!containsType(ValueKind::date) || date_ == other.date_);
}

std::int32_t TypeDomainPattern::hash() const noexcept {
    std::uint64_t hash = primitives_;
    const auto add = [&hash](std::uint64_t word) { hash = (hash ^ word) * 0x9E3779B97F4A7C15; };
    for (const GUID& type : others_)
        add(std::hash<GUID>()(type));
    add(containsType(ValueKind::number) ? static_cast<std::uint32_t>(numeric_.hash()) : 0);
    add(containsType(ValueKind::string) ? static_cast<std::uint32_t>(string_.hash()) : 0);
    add(containsType(ValueKind::date) ? static_cast<std::uint32_t>(date_.hash()) : 0);
    return static_cast<std::int32_t>(hash >> 32);
}

bool TypeDomainPattern::isSubset(const TypeDomainPattern& other) const noexcept {
    if (other.isEmpty())
        return true;
    return !isEmpty() && (primitives_ & ~other.primitives_) == 0 &&
           std::ranges::includes(other.others_, others_) &&
           (!containsType(ValueKind::number) || numeric_.isSubset(other.numeric_)) &&
           (!containsType(ValueKind::string) || string_.isSubset(other.string_)) &&
           (!containsType(ValueKind::date) || date_.isSubset(other.date_));
}

void TypeDomainPattern::serialize(ListOutStream& out) const {
    out.putBeginOfList();
    out.put(static_cast<std::uint32_t>(size()));
    for (const GUID& type : types()) {
        out.putBeginOfList();
        out.put(type);
        const ValueKind kind = kind_of(type);
        if (kind == ValueKind::number)
            to_stream(out, numeric_);
        else if (kind == ValueKind::string)
            to_stream(out, string_);
        else if (kind == ValueKind::date)
            to_stream(out, date_);
        out.putEndOfList();
    }
    out.putEndOfList();
}

void TypeDomainPattern::deserialize(ListInStream& in) {
    TypeDomainPattern read;
    std::vector<GUID> types;
    std::uint32_t count = 0; // no room is made for it before the types are there
    in.getBeginOfList();
    in.get(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        GUID type;
        in.getBeginOfList();
        in.get(type);
        types.push_back(type);
        const ValueKind kind = kind_of(type);
        if (kind == ValueKind::number)
            from_stream(in, read.numeric_);
        else if (kind == ValueKind::string)
            from_stream(in, read.string_);
        else if (kind == ValueKind::date)
            from_stream(in, read.date_);
        in.getEndOfList();
    }
    in.getEndOfList();
    read.addTypes(types);
    if (read.size() != types.size()) // a type twice
        throw_malformed();
    *this = std::move(read);
}

} // namespace core
