// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/color.h>

#include <cstddef>
#include <cstdint>

namespace core {

class Enumeration;

/// How a line is drawn. The numbers are stored.
enum class LineKind : std::int32_t {
    none = 0,       ///< there is no line
    solid = 1,      ///< without gaps
    dotted = 2,     ///< dots
    dashed = 3,     ///< dashes
    dashDot = 4,    ///< a dash, a dot
    dashDotDot = 5, ///< a dash, two dots
    twofold = 6,    ///< two solid lines side by side, within the width
};
/// Returns the script enumeration of the kinds, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(LineKind) noexcept;

inline constexpr std::int32_t kMaxLineWidth = 1000; ///< no line is wider, in pixels

/// A line: how it is drawn, how wide and in which colour. A value of 16 bytes; safe to read on any thread.
struct CORE_API LumLine {
    LineKind kind = LineKind::solid; ///< how it is drawn
    std::int32_t width = 1;          ///< in pixels, from 0, where nothing is drawn, to kMaxLineWidth
    Color color{};                   ///< the automatic colour is that of the text

    /// Says whether anything is drawn.
    [[nodiscard]] constexpr bool isVisible() const noexcept { return kind != LineKind::none && width > 0; }
    /// Says whether the kind is one of those above and the width within its limits.
    [[nodiscard]] constexpr bool isValid() const noexcept {
        return kind >= LineKind::none && kind <= LineKind::twofold && width >= 0 && width <= kMaxLineWidth;
    }
    /// Returns what people read, in the language of the thread: "Dashed, 2, SteelBlue". Throws
    /// std::bad_alloc.
    [[nodiscard]] wstring presentation() const;

    /// Says whether all fields are equal.
    friend constexpr bool operator==(const LumLine&, const LumLine&) = default;
    /// Returns a hash; equal lines have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(
            (static_cast<std::uint32_t>(color.hash()) * 31 + static_cast<std::uint32_t>(kind)) * 31 +
            static_cast<std::uint32_t>(width));
    }
};

/// Writes a line as a list: the number of its kind, the width, the text of the colour. Throws what the stream
/// throws.
CORE_API void to_stream(ListOutStream& out, const LumLine& line);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else, an invalid line among it;
/// `line` is unchanged then.
CORE_API void from_stream(ListInStream& in, LumLine& line);

} // namespace core
