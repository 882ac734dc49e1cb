// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/rgba.h>
#include <core/strings/term.h>

#include <cstdint>
#include <optional>
#include <span>

/// The colours that have names: those of the web, those of a Windows desktop and those of a style, as data.
/// Tables never change; all functions are safe on any thread.
namespace core {

/// A colour of a table.
struct NamedColor {
    NamePair names; ///< English and Russian, literals; the second spelling of a colour has no Russian name
    Rgba rgba;      ///< what it stands for
    std::int32_t number = -1; ///< the number that its system gives it; -1 where it gives none
};

/// Returns the 148 colours of CSS Color Module Level 4, by English name, borrowed for ever.
[[nodiscard]] CORE_API std::span<const NamedColor> web_colors() noexcept;
/// Returns the colours of a Windows desktop, by their numbers, borrowed for ever.
[[nodiscard]] CORE_API std::span<const NamedColor> windows_colors() noexcept;
/// Returns the colours that every style has, with what they are where no style sets them, borrowed for ever.
[[nodiscard]] CORE_API std::span<const NamedColor> style_colors() noexcept;

/// Returns the position in a table of the colour with that name, in either language and without regard to
/// case; nothing when the table has no such colour.
[[nodiscard]] CORE_API std::optional<std::size_t> find_color(std::span<const NamedColor> table,
                                                             wstring_view name) noexcept;

} // namespace core
