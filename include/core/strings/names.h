// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/compare.h>

#include <cstdint>

/// What names have in common, whether they name a property, a method or a key of a structure: which texts are
/// names, and the hash by which a table finds a name without regard to case. All functions are safe on any
/// thread.
namespace core {

/// Tells whether a text is a letter or "_", followed by letters, decimal digits and "_" alone. Letters of all
/// alphabets are letters.
[[nodiscard]] CORE_API bool is_valid_name(wstring_view text) noexcept;
/// Tells whether a text in UTF-8 is a name.
[[nodiscard]] CORE_API bool is_valid_name(std::string_view text);
/// Tells whether a text that is given by a pointer (code_unit.h) is a name.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] bool is_valid_name(const C* text, End... end) {
    return is_valid_name(text_view(text, end...));
}

/// Returns the hash of the full case folding, so that texts which compare_nocase() calls equal have equal
/// hashes: h = 0, then h = h * 5 + c for each unit c, modulo 2^32. It is the same in every process.
[[nodiscard]] CORE_API std::int32_t hash_nocase(wstring_view text) noexcept;
/// Returns the hash of the full case folding of a text in UTF-8: that of the same wide text.
[[nodiscard]] CORE_API std::int32_t hash_nocase(std::string_view text);
/// Returns the hash of the full case folding of a text that is given by a pointer (code_unit.h).
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::int32_t hash_nocase(const C* text, End... end) {
    return hash_nocase(text_view(text, end...));
}

/// Returns the same hash as hash_nocase(), for a text that is folded already.
[[nodiscard]] constexpr std::int32_t hash_folded(wstring_view folded) noexcept {
    std::uint32_t hash = 0;
    for (const wchar c : folded)
        hash = hash * 5 + c;
    return static_cast<std::int32_t>(hash);
}

/// The hash of a standard table whose keys are names in any case. It is not spread over all bits: a table
/// that needs that mixes it.
struct NocaseHash {
    /// Tells the standard tables to search by any wide form of a text, without a string of their own.
    using is_transparent = void;
    /// Returns hash_nocase() of the name.
    [[nodiscard]] std::size_t operator()(wstring_view name) const noexcept {
        return static_cast<std::uint32_t>(hash_nocase(name));
    }
};

/// The equality of a standard table whose keys are names in any case.
struct NocaseEqual {
    /// Tells the standard tables to search by any wide form of a text, without a string of their own.
    using is_transparent = void;
    /// Tells whether compare_nocase() calls the names equal.
    [[nodiscard]] bool operator()(wstring_view a, wstring_view b) const noexcept {
        return compare_nocase(a, b) == 0;
    }
};

} // namespace core
