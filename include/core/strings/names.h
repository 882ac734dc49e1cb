// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>
#include <core/strings/compare.h>

#include <cstdint>

/// What names have in common, whatever they name (a property, a method, a key of a structure): which texts
/// are names, and how tables find a name without regard to case. Safe on any thread.
namespace core {

/// A letter or "_", then letters, decimal digits and "_". Letters of all alphabets are letters.
[[nodiscard]] CORE_API bool is_valid_name(wstring_view text) noexcept;
[[nodiscard]] CORE_API bool is_valid_name(std::string_view text);

/// h = 0, then h = h * 5 + c for each unit c of the full case folding, modulo 2^32.
[[nodiscard]] CORE_API std::int32_t hash_nocase(wstring_view text) noexcept;
[[nodiscard]] CORE_API std::int32_t hash_nocase(std::string_view text);

/// The same hash for text that is folded already.
[[nodiscard]] constexpr std::int32_t hash_folded(wstring_view folded) noexcept {
    std::uint32_t hash = 0;
    for (const wchar c : folded)
        hash = hash * 5 + c;
    return static_cast<std::int32_t>(hash);
}

template <CodeUnit C>
[[nodiscard]] bool is_valid_name(const C* text) {
    return is_valid_name(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] bool is_valid_name(const C* text, std::size_t length) {
    return is_valid_name(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] bool is_valid_name(const C* begin, const C* end) {
    return is_valid_name(text_view(begin, end));
}

template <CodeUnit C>
[[nodiscard]] std::int32_t hash_nocase(const C* text) {
    return hash_nocase(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::int32_t hash_nocase(const C* text, std::size_t length) {
    return hash_nocase(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::int32_t hash_nocase(const C* begin, const C* end) {
    return hash_nocase(text_view(begin, end));
}

/// Hash and equality of a table keyed by names, for keys of any wide form. The hash is not spread over all
/// bits: a table that needs that mixes it.
struct NocaseHash {
    using is_transparent = void;
    [[nodiscard]] std::size_t operator()(wstring_view name) const noexcept {
        return static_cast<std::uint32_t>(hash_nocase(name));
    }
};
struct NocaseEqual {
    using is_transparent = void;
    [[nodiscard]] bool operator()(wstring_view a, wstring_view b) const noexcept {
        return compare_nocase(a, b) == 0;
    }
};

} // namespace core
