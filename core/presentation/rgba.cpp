// SPDX-License-Identifier: Apache-2.0
#include <core/presentation/rgba.h>

#include <algorithm>
#include <cmath>

namespace core {
namespace {

/// The value in its range; NaN is 0.
double within(double value, double most) noexcept {
    return value > 0 ? std::min(value, most) : 0;
}

std::uint8_t channel_of(double share) noexcept {
    return static_cast<std::uint8_t>(std::lround(within(share, 1) * 255));
}

/// A channel without the curve that sRGB stores it with.
double linear(std::uint8_t channel) noexcept {
    const double share = channel / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

} // namespace

Hsl to_hsl(Rgba color) noexcept {
    const double red = color.red / 255.0;
    const double green = color.green / 255.0;
    const double blue = color.blue / 255.0;
    const double most = std::max({red, green, blue});
    const double least = std::min({red, green, blue});
    const double chroma = most - least;
    Hsl result{.lightness = (most + least) / 2};
    if (chroma == 0)
        return result;
    result.saturation = chroma / (1 - std::abs(most + least - 1));
    double sixths = 0;
    if (most == red)
        sixths = (green - blue) / chroma + (green < blue ? 6 : 0);
    else if (most == green)
        sixths = (blue - red) / chroma + 2;
    else
        sixths = (red - green) / chroma + 4;
    result.hue = sixths * 60;
    return result;
}

Rgba from_hsl(const Hsl& color, std::uint8_t alpha) noexcept {
    const double lightness = within(color.lightness, 1);
    const double chroma = (1 - std::abs(2 * lightness - 1)) * within(color.saturation, 1);
    double sixths = std::isfinite(color.hue) ? std::fmod(color.hue, 360) / 60 : 0;
    if (sixths < 0)
        sixths += 6;
    const double second = chroma * (1 - std::abs(std::fmod(sixths, 2) - 1));
    const double least = lightness - chroma / 2;
    // Which of the three is the greatest and which the middle one, by sixths of the circle.
    constexpr int kOrder[6][3] = {{2, 1, 0}, {1, 2, 0}, {0, 2, 1}, {0, 1, 2}, {1, 0, 2}, {2, 0, 1}};
    const double shares[3] = {least, least + second, least + chroma};
    const int(&order)[3] = kOrder[std::min(static_cast<int>(sixths), 5)];
    return {channel_of(shares[order[0]]), channel_of(shares[order[1]]), channel_of(shares[order[2]]), alpha};
}

Rgba blend(Rgba above, Rgba below) noexcept {
    // Weights in units of 1/(255 * 255), so that nothing is rounded before the end.
    const std::uint32_t front = above.alpha * 255U;
    const std::uint32_t back = below.alpha * (255U - above.alpha);
    const std::uint32_t all = front + back;
    if (all == 0)
        return {0, 0, 0, 0};
    const auto mix = [&](std::uint8_t a, std::uint8_t b) {
        return static_cast<std::uint8_t>((a * front + b * back + all / 2) / all);
    };
    return {mix(above.red, below.red), mix(above.green, below.green), mix(above.blue, below.blue),
            static_cast<std::uint8_t>((all + 127) / 255)};
}

double luminance(Rgba color) noexcept {
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(Rgba text, Rgba background) noexcept {
    background.alpha = 255;
    const double a = luminance(blend(text, background));
    const double b = luminance(background);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

Rgba legible(Rgba text, Rgba background) noexcept {
    constexpr double kLegible = 4.5;
    if (contrast(text, background) >= kLegible)
        return text;
    const Rgba seen = blend(text, {background.red, background.green, background.blue});
    const Hsl color = to_hsl(seen);
    // Black or white, whichever has more contrast, always has enough.
    const double end = contrast({0, 0, 0}, background) >= contrast({255, 255, 255}, background) ? 0 : 1;
    const auto at = [&](int steps) {
        return from_hsl(
            {color.hue, color.saturation, color.lightness + (end - color.lightness) * steps / 256});
    };
    int below = 0, enough = 256;
    while (enough - below > 1) {
        const int middle = (below + enough) / 2;
        (contrast(at(middle), background) >= kLegible ? enough : below) = middle;
    }
    return at(enough);
}

} // namespace core
