// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <concepts>
#include <cstddef>
#include <string_view>

/// The forms in which text reaches the string functions. Every function has one implementation, over a view;
/// beside it stand the same three overloads everywhere: a NUL-terminated pointer, a pointer with a length, a
/// begin/end pair. A null pointer is the empty text.
///
/// Wide text is UTF-16, and its functions work on code units. Narrow text is UTF-8: a narrow function answers
/// what its wide twin answers for the converted text.
namespace core {

template <class C>
concept CodeUnit = std::same_as<C, wchar> || std::same_as<C, char>;

template <CodeUnit C>
[[nodiscard]] constexpr std::basic_string_view<C> text_view(const C* text) noexcept {
    return text != nullptr ? std::basic_string_view<C>(text) : std::basic_string_view<C>();
}

template <CodeUnit C>
[[nodiscard]] constexpr std::basic_string_view<C> text_view(const C* begin, const C* end) noexcept {
    return {begin, static_cast<std::size_t>(end - begin)};
}

} // namespace core
