// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>
#include <core/strings/term.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// Fonts as people say them: a face by name and how its letters look, each part of which may be left to the
/// place where the font is used. No font is loaded or measured.
namespace core {

class ListInStream;
class ListOutStream;
class Enumeration;

/// How a font is said. The numbers are stored.
enum class FontKind : std::int32_t {
    automatic = 0, ///< no part is said: all of them are inherited
    absolute = 1,  ///< by its parts
    style = 2,     ///< by a name of style_fonts(), perhaps with parts of its own
};
/// Returns the script enumeration of the kinds, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(FontKind) noexcept;

/// How letters stand. The numbers are stored.
enum class FontSlant : std::int32_t {
    upright = 0, ///< straight
    italic = 1,  ///< with the forms of an italic face
    oblique = 2, ///< the straight forms, leant
};
/// Returns the script enumeration of the slants, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(FontSlant) noexcept;

inline constexpr std::int32_t kNormalWeight = 400; ///< the weight of a text
inline constexpr std::int32_t kBoldWeight = 700;   ///< the weight of a bold text
inline constexpr std::int32_t kMaxWeight = 1000;   ///< no weight is greater; the least is 1
inline constexpr std::int32_t kMaxFontSize =
    1'000'000; ///< no size is greater, in hundredths of a point; the least is 1

/// A font. A part without a value is inherited. A plain value; safe to read on any thread.
struct CORE_API Font {
    /// The position in style_fonts() of the font that this one inherits from first.
    std::optional<std::size_t> item{};
    std::optional<wstring> face{};        ///< the name of the family; the empty one is that of the system
    std::optional<std::int32_t> size{};   ///< in hundredths of a point, from 1 to kMaxFontSize
    std::optional<std::int32_t> weight{}; ///< from 1 to kMaxWeight
    std::optional<FontSlant> slant{};     ///< how the letters stand
    std::optional<bool> underline{};      ///< whether there is a line below
    std::optional<bool> strikeOut{};      ///< whether there is a line through the letters

    /// Returns how the font is said.
    [[nodiscard]] FontKind kind() const noexcept;
    /// Says whether all parts are within their limits, and the item is one of style_fonts().
    [[nodiscard]] bool isValid() const noexcept;
    /// Returns this font with the parts that it leaves open taken from another one; the item, too. Throws
    /// std::bad_alloc.
    [[nodiscard]] Font inheriting(const Font& base) const;
    /// Returns what people read, in the language of the thread: "Arial, 10.5, bold". Throws std::bad_alloc.
    [[nodiscard]] wstring presentation() const;

    /// Says whether all parts are equal; one that is inherited differs from every value.
    friend bool operator==(const Font&, const Font&) = default;
    /// Returns a hash; equal fonts have equal ones.
    [[nodiscard]] std::int32_t hash() const noexcept;
};

/// Returns the names of the fonts that every style has, borrowed for ever.
[[nodiscard]] CORE_API std::span<const NamePair> style_fonts() noexcept;
/// Returns the position in style_fonts() of a name, in either language and any case; nothing if none has it.
[[nodiscard]] CORE_API std::optional<std::size_t> find_style_font(wstring_view name) noexcept;
/// Returns what the font at a position of style_fonts() is where no style sets it: all parts have a value.
/// Throws std::bad_alloc.
[[nodiscard]] CORE_API Font default_font(std::size_t position);

/// Writes a font as a list: the English name of its item, which may be empty, a number with a bit for each
/// part that has a value, in their order, and these values. Throws what the stream throws.
CORE_API void to_stream(ListOutStream& out, const Font& font);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else, an invalid font among it;
/// `font` is unchanged then.
CORE_API void from_stream(ListInStream& in, Font& font);

} // namespace core
