// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/border.h>
#include <core/presentation/color_tables.h>
#include <core/presentation/font.h>

#include <map>
#include <memory>
#include <optional>

namespace core {

/// What the named items of a look are: the colours of style_colors(), the fonts of style_fonts() and a
/// border. What a style does not set comes from the style that it is based on, and in the end from the
/// defaults of the items. A copy is independent; one thread at a time changes a style, any number of them
/// read it.
class CORE_API Style {
  public:
    /// A style that sets nothing.
    Style() = default;
    /// Returns a style that sets nothing and is based on another one, of which it keeps a copy. Throws
    /// std::bad_alloc, and ContextException (messages::kParameterValue) where more than 64 styles would stand
    /// on each other.
    [[nodiscard]] static Style basedOn(const Style& base);

    /// Sets the colour at a position of style_colors(). Throws std::out_of_range for a position that it does
    /// not have, and std::bad_alloc.
    void setColor(std::size_t item, const Color& color);
    /// Sets the font at a position of style_fonts(). Throws std::out_of_range for a position that it does not
    /// have, and std::bad_alloc.
    void setFont(std::size_t item, Font font);
    /// Sets the border.
    void setBorder(const LumBorder& border) noexcept { border_ = border; }
    /// Lets the colour at a position come from the style below again.
    void clearColor(std::size_t item) noexcept { colors_.erase(item); }
    /// Lets the font at a position come from the style below again.
    void clearFont(std::size_t item) noexcept { fonts_.erase(item); }
    /// Lets the border come from the style below again.
    void clearBorder() noexcept { border_.reset(); }

    /// Returns the colour that this style sets, or one that it is based on; nothing where none does.
    [[nodiscard]] std::optional<Color> color(std::size_t item) const noexcept;
    /// Returns the font that this style sets, completed by those that it is based on. Throws std::bad_alloc.
    [[nodiscard]] Font font(std::size_t item) const;
    /// Returns the border that this style sets, or one that it is based on; the automatic one where none
    /// does.
    [[nodiscard]] LumBorder border() const noexcept;
    /// Returns the style that this one is based on, borrowed: valid as long as this style; null for a
    /// style that is based on no other.
    [[nodiscard]] const Style* base() const noexcept { return base_.get(); }

    /// Returns the channels of a colour in this style; `automatic` for the automatic colour, and where items
    /// lead to each other in a circle.
    [[nodiscard]] Rgba resolve(const Color& color, Rgba automatic) const noexcept;
    /// Returns a font with a value for every part: what it leaves open comes from its item in this style,
    /// without an item from "TextFont". Throws std::bad_alloc.
    [[nodiscard]] Font resolve(const Font& font) const;

    /// Says whether both set the same and are based on equal styles.
    friend CORE_API bool operator==(const Style& a, const Style& b) noexcept;
    /// Returns a hash; equal styles have equal ones.
    [[nodiscard]] std::int32_t hash() const noexcept;

  private:
    friend CORE_API void to_stream(ListOutStream& out, const Style& style);
    friend CORE_API void from_stream(ListInStream& in, Style& style);

    std::map<std::size_t, Color> colors_;
    std::map<std::size_t, Font> fonts_;
    std::optional<LumBorder> border_;
    std::shared_ptr<const Style> base_;
};

/// Writes a style as a list: how many colours, each with its English name; the fonts in the same way; whether
/// there is a border, and it; whether there is a base, and it. Throws what the stream throws.
CORE_API void to_stream(ListOutStream& out, const Style& style);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else; `style` is unchanged then.
CORE_API void from_stream(ListInStream& in, Style& style);

} // namespace core
