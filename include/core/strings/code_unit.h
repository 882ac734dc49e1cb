// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <concepts>
#include <cstddef>
#include <string_view>

/// The forms in which text reaches the string functions. Each function works on a view. Beside it stands one
/// template for a pointer to the text, and what may follow the pointer is the same everywhere: nothing when a
/// null unit ends the text, its length, or a pointer to its end. A null pointer is the empty text. Where a
/// number or a pointer behind the text means something else already (a radix, an argument to be formatted),
/// text_view() makes the view of a pointer and a length.
///
/// Wide text is UTF-16, and its functions work on code units. Narrow text is UTF-8: a narrow function answers
/// what the wide function answers for the converted text.
namespace core {

/// The unit of a text: of UTF-16 or of UTF-8.
template <class C>
concept CodeUnit = std::same_as<C, wchar> || std::same_as<C, char>;

/// What may say, after a pointer to units `C`, where a text ends: its length, or a pointer to its end.
template <class E, class C>
concept TextEnd = std::convertible_to<E, const C*> ||
    (std::integral<E> && !std::same_as<E, bool> && !CodeUnit<E>);

/// Borrows the text that a null unit ends. Null gives the empty text.
template <CodeUnit C>
[[nodiscard]] constexpr std::basic_string_view<C> text_view(const C* text) noexcept {
    return text != nullptr ? std::basic_string_view<C>(text) : std::basic_string_view<C>();
}

/// Borrows the text from `text` up to `end`, which is its length in units or the pointer behind its last
/// unit.
template <CodeUnit C, TextEnd<C> E>
[[nodiscard]] constexpr std::basic_string_view<C> text_view(const C* text, E end) noexcept {
    if constexpr (std::integral<E>)
        return {text, static_cast<std::size_t>(end)};
    else
        return {text, static_cast<std::size_t>(static_cast<const C*>(end) - text)};
}

} // namespace core
