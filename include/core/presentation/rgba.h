// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstdint>

/// What a colour is made of, and the arithmetic of colours. All functions are safe on any thread.
namespace core {

/// A colour by its channels in sRGB, from 0 to 255.
struct Rgba {
    std::uint8_t red = 0;     ///< from 0 to 255
    std::uint8_t green = 0;   ///< from 0 to 255
    std::uint8_t blue = 0;    ///< from 0 to 255
    std::uint8_t alpha = 255; ///< 0 is transparent, 255 covers what lies below

    /// Says whether all channels are equal.
    friend constexpr bool operator==(const Rgba&, const Rgba&) = default;
    /// Returns the channels as one number, 0xRRGGBBAA.
    [[nodiscard]] constexpr std::uint32_t number() const noexcept {
        return static_cast<std::uint32_t>(red) << 24 | static_cast<std::uint32_t>(green) << 16 |
               static_cast<std::uint32_t>(blue) << 8 | alpha;
    }
    /// Returns the colour with that number, 0xRRGGBBAA.
    [[nodiscard]] static constexpr Rgba fromNumber(std::uint32_t number) noexcept {
        return {static_cast<std::uint8_t>(number >> 24), static_cast<std::uint8_t>(number >> 16),
                static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number)};
    }
};

/// A colour by hue, saturation and lightness.
struct Hsl {
    double hue = 0;        ///< degrees, from 0 up to 360, which is not reached; 0 for a grey
    double saturation = 0; ///< from 0 to 1; 0 for a grey
    double lightness = 0;  ///< from 0, black, to 1, white
};

/// Returns the hue, the saturation and the lightness of a colour; its alpha does not count.
[[nodiscard]] CORE_API Hsl to_hsl(Rgba color) noexcept;
/// Returns the nearest colour in 8 bits a channel. Any hue is taken round the circle; what else is out of
/// range counts as the end of its range, and NaN as 0. from_hsl(to_hsl(c), c.alpha) is `c` for every colour.
[[nodiscard]] CORE_API Rgba from_hsl(const Hsl& color, std::uint8_t alpha = 255) noexcept;

/// Returns what is seen of `above` when it lies on `below`.
[[nodiscard]] CORE_API Rgba blend(Rgba above, Rgba below) noexcept;
/// Returns the relative luminance of WCAG 2, from 0 for black to 1 for white; alpha does not count.
[[nodiscard]] CORE_API double luminance(Rgba color) noexcept;
/// Returns the contrast ratio of WCAG 2, from 1 to 21, of a text on a background. A text that is not opaque
/// is first blended with the background, whose own alpha does not count. 4.5 is the least for texts that are
/// to be read by everybody.
[[nodiscard]] CORE_API double contrast(Rgba text, Rgba background) noexcept;
/// Returns a text as it is where its contrast on a background is 4.5 or more, else an opaque colour of the
/// same hue that is as much darker or lighter as that takes.
[[nodiscard]] CORE_API Rgba legible(Rgba text, Rgba background) noexcept;

} // namespace core
