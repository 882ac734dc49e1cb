// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/line.h>

#include <array>

namespace core {

/// What a border looks like. The numbers are stored.
enum class BorderKind : std::int32_t {
    automatic = 0, ///< whatever suits the place where it is used
    lines = 1,     ///< the lines of its four sides
    raised = 2,    ///< as if what is inside stood out; the lines say how wide it is
    sunken = 3,    ///< as if what is inside lay deeper; the lines say how wide it is
    rounded = 4,   ///< the lines of its four sides, with round corners
};
/// Returns the script enumeration of the kinds, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(BorderKind) noexcept;

/// A side of a border, by its index in LumBorder::sides.
enum class BorderSide : std::uint8_t {
    left = 0,   ///< on the left
    top = 1,    ///< above
    right = 2,  ///< on the right
    bottom = 3, ///< below
};

/// A border: its kind and a line for each of the four sides. A plain value; safe to read on any thread.
struct CORE_API LumBorder {
    BorderKind kind = BorderKind::automatic;                  ///< what it looks like
    std::array<LumLine, 4> sides{kNone, kNone, kNone, kNone}; ///< by BorderSide

    /// The automatic border.
    constexpr LumBorder() noexcept = default;
    /// A border of one line on all sides.
    explicit constexpr LumBorder(const LumLine& line, BorderKind borderKind = BorderKind::lines) noexcept
        : kind(borderKind), sides{line, line, line, line} {}

    /// Returns the line of a side.
    [[nodiscard]] constexpr const LumLine& side(BorderSide side) const noexcept {
        return sides[static_cast<std::size_t>(side)];
    }
    /// Returns the line of a side, to be changed; valid as long as the border.
    [[nodiscard]] constexpr LumLine& side(BorderSide side) noexcept {
        return sides[static_cast<std::size_t>(side)];
    }
    /// Says whether all four sides have the same line.
    [[nodiscard]] constexpr bool isUniform() const noexcept {
        return sides[0] == sides[1] && sides[1] == sides[2] && sides[2] == sides[3];
    }
    /// Says whether the kind is one of those above and all lines are valid.
    [[nodiscard]] constexpr bool isValid() const noexcept {
        bool valid = kind >= BorderKind::automatic && kind <= BorderKind::rounded;
        for (const LumLine& line : sides)
            valid = valid && line.isValid();
        return valid;
    }
    /// Returns what people read, in the language of the thread: the kind, and the line where all sides have
    /// the same. Throws std::bad_alloc.
    [[nodiscard]] wstring presentation() const;

    /// Says whether the kind and all lines are equal.
    friend constexpr bool operator==(const LumBorder&, const LumBorder&) = default;
    /// Returns a hash; equal borders have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        auto hash = static_cast<std::uint32_t>(kind);
        for (const LumLine& line : sides)
            hash = hash * 31 + static_cast<std::uint32_t>(line.hash());
        return static_cast<std::int32_t>(hash);
    }

  private:
    static constexpr LumLine kNone{.kind = LineKind::none, .width = 0, .color = {}};
};

/// Writes a border as a list: the number of its kind and the four lines, left, top, right, bottom. Throws
/// what the stream throws.
CORE_API void to_stream(ListOutStream& out, const LumBorder& border);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else, an invalid border among it;
/// `border` is unchanged then.
CORE_API void from_stream(ListInStream& in, LumBorder& border);

} // namespace core
