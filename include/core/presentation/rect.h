// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <algorithm>
#include <cstdint>

namespace core {

class ListInStream;
class ListOutStream;

/// A rectangle of pixels: from the first column and row up to, but without, the last. The y axis leads down.
/// One whose right is not behind its left, or bottom behind its top, is empty. A value of 16 bytes; safe to
/// read on any thread.
struct Rect {
    std::int32_t left = 0;   ///< the first column
    std::int32_t top = 0;    ///< the first row
    std::int32_t right = 0;  ///< the column behind the last
    std::int32_t bottom = 0; ///< the row behind the last

    /// Says whether there is nothing inside.
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return right <= left || bottom <= top; }
    /// Returns how many columns there are; 0 where the right is not behind the left.
    [[nodiscard]] constexpr std::int64_t width() const noexcept {
        return std::max<std::int64_t>(std::int64_t{right} - left, 0);
    }
    /// Returns how many rows there are; 0 where the bottom is not behind the top.
    [[nodiscard]] constexpr std::int64_t height() const noexcept {
        return std::max<std::int64_t>(std::int64_t{bottom} - top, 0);
    }
    /// Says whether a pixel lies inside.
    [[nodiscard]] constexpr bool contains(std::int32_t x, std::int32_t y) const noexcept {
        return x >= left && x < right && y >= top && y < bottom;
    }
    /// Returns what lies in both rectangles; Rect() when nothing does.
    [[nodiscard]] constexpr Rect intersection(const Rect& other) const noexcept {
        const Rect both{std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                        std::min(bottom, other.bottom)};
        return both.isEmpty() ? Rect() : both;
    }
    /// Returns the smallest rectangle around both; an empty one does not count.
    [[nodiscard]] constexpr Rect around(const Rect& other) const noexcept {
        if (isEmpty())
            return other.isEmpty() ? Rect() : other;
        if (other.isEmpty())
            return *this;
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }
    /// Returns the rectangle moved to the right and down. An edge that would leave the range of its numbers
    /// stays at its end.
    [[nodiscard]] constexpr Rect moved(std::int32_t x, std::int32_t y) const noexcept {
        return {sum(left, x), sum(top, y), sum(right, x), sum(bottom, y)};
    }

    /// Says whether all edges are equal; two empty rectangles may differ.
    friend constexpr bool operator==(const Rect&, const Rect&) = default;
    /// Returns a hash; equal rectangles have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        std::uint32_t hash = 0;
        for (const std::int32_t edge : {left, top, right, bottom})
            hash = hash * 31 + static_cast<std::uint32_t>(edge);
        return static_cast<std::int32_t>(hash);
    }

  private:
    static constexpr std::int32_t sum(std::int32_t a, std::int32_t b) noexcept {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(std::int64_t{a} + b, INT32_MIN, INT32_MAX));
    }
};

/// Writes a rectangle as a list of its left, top, right and bottom. Throws what the stream throws.
CORE_API void to_stream(ListOutStream& out, const Rect& rect);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else; `rect` is unchanged then.
CORE_API void from_stream(ListInStream& in, Rect& rect);

} // namespace core
