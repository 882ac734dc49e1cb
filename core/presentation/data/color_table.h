// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/color_tables.h>

#include <cstddef>
#include <iterator>
#include <span>

namespace core::detail {

/// A colour without transparency, written as 0xRRGGBB.
constexpr Rgba rgb(std::uint32_t number) noexcept {
    return {static_cast<std::uint8_t>(number >> 16), static_cast<std::uint8_t>(number >> 8),
            static_cast<std::uint8_t>(number)};
}

/// Names here differ by more than the case of a letter, in ASCII; the tests hold the Russian ones to the
/// same.
constexpr bool same_ascii(const wchar* a, const wchar* b) noexcept {
    const auto lower = [](wchar c) { return c >= u'A' && c <= u'Z' ? static_cast<wchar>(c + 32) : c; };
    while (*a != 0 && lower(*a) == lower(*b)) {
        ++a;
        ++b;
    }
    return lower(*a) == lower(*b);
}

/// Whether each entry has an English name and no two have the same in one language.
constexpr bool is_color_table(std::span<const NamedColor> colors) noexcept {
    for (std::size_t i = 0; i < colors.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            for (const int alias : {kEnglish, kRussian}) {
                const wchar* const a = colors[i].names.text[alias];
                const wchar* const b = colors[j].names.text[alias];
                if (a != nullptr && b != nullptr && same_ascii(a, b))
                    return false;
            }
        }
        if (colors[i].names.text[kEnglish] == nullptr)
            return false;
    }
    return true;
}

} // namespace core::detail
