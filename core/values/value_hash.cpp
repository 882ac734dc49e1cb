// SPDX-License-Identifier: Apache-2.0
#include "core/values/value_hash.h"

#include <optional>

namespace core {

/// What a String remembers of its own hashes.
struct StringHashes {
    static std::uint64_t ofText(const Value& value) noexcept { return string(value).tableHash(); }
    static std::uint64_t ofName(const Value& value) noexcept { return string(value).nameHash(); }

  private:
    static const StringValue& string(const Value& value) noexcept {
        return static_cast<const StringValue&>(*value.object());
    }
};

namespace {

/// An exact hash of `word`: a one-to-one mapping of 63 bits, above the bit that says so.
std::uint64_t exact_hash(std::int64_t word) noexcept {
    constexpr std::uint64_t kMask = ~std::uint64_t{0} >> 1;
    std::uint64_t x = (static_cast<std::uint64_t>(word) ^ table_hash_seed()) & kMask;
    x = x * 0x9E3779B97F4A7C15 & kMask;
    x ^= x >> 32;
    x = x * 0xD6E8FEB86659FD93 & kMask;
    x ^= x >> 31;
    return x << 1 | 1;
}

std::uint64_t mixed_hash(std::uint64_t hash) noexcept {
    hash &= ~std::uint64_t{1};
    return hash != 0 ? hash : 2;
}

/// A whole number that fits 63 bits.
std::optional<std::int64_t> small_whole(const Numeric& number) noexcept {
    const auto count = static_cast<std::int64_t>(number.limbs().size());
    if (number.fractionLimbs() > 0 || count - number.fractionLimbs() > 2) // two limbs are below 10^18
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

std::uint64_t hash_number(const Numeric& number) noexcept {
    if (const auto whole = small_whole(number))
        return exact_hash(*whole);
    const auto limbs = number.limbs();
    std::uint64_t hash =
        table_hash_step(table_hash_seed(), static_cast<std::uint32_t>(number.fractionLimbs()));
    hash = table_hash_step(hash, static_cast<std::uint64_t>(number.sign()));
    return mixed_hash(table_hash_step(hash, table_hash(std::as_bytes(limbs))));
}

std::uint64_t hash_word(std::uint64_t word) noexcept {
    return mixed_hash(table_hash_step(table_hash_seed(), word));
}

std::uint64_t hash_ticks(std::uint64_t ticks) noexcept {
    const auto word = static_cast<std::int64_t>(ticks);
    return word >= 0 ? exact_hash(word) : hash_word(ticks);
}

/// By payload: another module's idea of a primitive value may equal ours.
std::uint64_t hash_object(const IValue& object) noexcept {
    const void* const payload = object.getDataPtr();
    switch (object.getType()->code()) {
    case Type::number:
        return hash_number(*static_cast<const Numeric*>(payload));
    case Type::string:
        return text_table_hash(*static_cast<const wstring_view*>(payload));
    case Type::date:
        return hash_ticks(static_cast<const Date*>(payload)->ticks());
    case Type::type:
        return hash_word(reinterpret_cast<std::uintptr_t>(static_cast<const Type*>(payload)->get()));
    default:
        return hash_word(static_cast<std::uint32_t>(object.hashCode()));
    }
}

} // namespace

std::uint64_t value_table_hash(const Value& value) noexcept {
    switch (value.kind()) {
    case ValueKind::number:
        if (const auto whole = value.asSmallWhole())
            return exact_hash(*whole);
        return hash_number(*value.asNumeric());
    case ValueKind::string:
        return StringHashes::ofText(value);
    default:
        return hash_object(*value.object());
    }
}

std::uint64_t text_table_hash(wstring_view text) noexcept {
    return mixed_hash(table_hash(text));
}

std::uint64_t name_table_hash(wstring_view name) noexcept {
    return mixed_hash(table_hash_nocase(name));
}

std::uint64_t name_table_hash(const Value& value) noexcept {
    return value.kind() == ValueKind::string ? StringHashes::ofName(value) : 0;
}

} // namespace core
