// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/rgba.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace core {

class Enumeration;
class ListInStream;
class ListOutStream;

/// How a colour is said. The numbers are stored.
enum class ColorKind : std::int32_t {
    automatic = 0, ///< whatever suits the place where it is used
    absolute = 1,  ///< by its channels
    web = 2,       ///< by a name of web_colors()
    windows = 3,   ///< by a name of windows_colors()
    style = 4,     ///< by a name of style_colors(), which the style in use gives a colour to
};
/// Returns the script enumeration of the kinds, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(ColorKind) noexcept;

/// A colour as it was said: what has a name keeps it, so that `web:Aqua` and `web:Cyan` are two colours that
/// look the same. A value of 8 bytes; safe to read on any thread.
class CORE_API Color {
  public:
    /// The automatic colour.
    constexpr Color() noexcept = default;
    /// The absolute colour with these channels.
    constexpr Color(Rgba rgba) noexcept : kind_(ColorKind::absolute), value_(rgba.number()) {}
    /// The absolute colour with these channels, each from 0 to 255.
    constexpr Color(std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                    std::uint8_t alpha = 255) noexcept
        : Color(Rgba{red, green, blue, alpha}) {}

    /// Returns the colour of web_colors() with that name, in either language and any case; nothing if none
    /// has it.
    [[nodiscard]] static std::optional<Color> web(wstring_view name) noexcept;
    /// Returns the colour of windows_colors() with that name, in either language and any case; nothing if
    /// none has it.
    [[nodiscard]] static std::optional<Color> windows(wstring_view name) noexcept;
    /// Returns the colour of style_colors() with that name, in either language and any case; nothing if none
    /// has it.
    [[nodiscard]] static std::optional<Color> style(wstring_view name) noexcept;
    /// Returns the colour at a position of the table of its kind. The kind must have a table, and the table
    /// that position.
    [[nodiscard]] static constexpr Color named(ColorKind kind, std::size_t position) noexcept {
        return Color(kind, static_cast<std::uint32_t>(position));
    }

    /// Returns how the colour is said.
    [[nodiscard]] constexpr ColorKind kind() const noexcept { return kind_; }
    /// Says whether the colour is the automatic one.
    [[nodiscard]] constexpr bool isAutomatic() const noexcept { return kind_ == ColorKind::automatic; }
    /// Returns the channels; nothing for the automatic colour. A colour of a style has those that it has
    /// where no style sets it; Style::resolve() asks a style.
    [[nodiscard]] std::optional<Rgba> rgba() const noexcept;
    /// Returns the name in a language (kEnglish, kRussian), borrowed for ever; null for a colour that is said
    /// without one.
    [[nodiscard]] const wchar* name(int alias) const noexcept;

    /// Returns the one text of the colour, the same in each language: "auto", "#RRGGBB", "#RRGGBBAA" where it
    /// is not opaque, "web:SteelBlue", "windows:ButtonFace", "style:TextColor". Throws std::bad_alloc.
    [[nodiscard]] wstring toText() const;
    /// Returns the colour of a text; nothing for a text that says none. Besides what toText() returns it
    /// takes "#RGB" and
    /// "#RGBA", names in either language, prefixes in any case and their Russian forms ("веб:СтальнойСиний"),
    /// and the name of a colour of the web without a prefix. White space around the text does not count.
    [[nodiscard]] static std::optional<Color> fromText(wstring_view text) noexcept;
    /// Returns what people read, in the language of the thread: a name, "#RRGGBB", or the word for the
    /// automatic colour. Throws std::bad_alloc.
    [[nodiscard]] wstring presentation() const;

    /// Says whether two colours are said in the same way; look at rgba() to compare what is seen.
    friend constexpr bool operator==(const Color&, const Color&) = default;
    /// Returns a hash; equal colours have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(value_ * 5 + static_cast<std::uint32_t>(kind_));
    }

  private:
    constexpr Color(ColorKind kind, std::uint32_t value) noexcept : kind_(kind), value_(value) {}

    ColorKind kind_ = ColorKind::automatic;
    std::uint32_t value_ = 0; // 0xRRGGBBAA, or the position in the table of the kind
};

/// Writes the text of a colour as a string. Throws what the stream throws.
CORE_API void to_stream(ListOutStream& out, const Color& color);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else; `color` is unchanged then.
CORE_API void from_stream(ListInStream& in, Color& color);

} // namespace core
