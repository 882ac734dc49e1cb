// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace core {

/// The powers of ten that a word holds.
inline constexpr std::array<std::int64_t, Numeric::kMaxScale + 1> kTens = [] {
    std::array<std::int64_t, Numeric::kMaxScale + 1> tens{1};
    for (std::size_t i = 1; i < tens.size(); ++i)
        tens[i] = tens[i - 1] * 10;
    return tens;
}();

/// A number as a text in ASCII holds it: `word` × 10^-`digits`, or `wide` where that has more than 18 digits.
struct NumberText {
    std::int64_t word = 0;
    std::uint8_t digits = 0;     ///< behind the point
    bool plain = false;          ///< written from word and digits, the text would be the same
    bool padded = false;         ///< with zeros in front, as codes have them and numbers do not
    std::optional<Numeric> wide; ///< where a word does not hold it
};

/// Reads a whole text: a sign, digits with a point among them, an exponent; nothing for any other text.
[[nodiscard]] std::optional<NumberText> read_number(std::string_view text);

/// Returns the same for a number.
[[nodiscard]] NumberText number_text(const Numeric& number);

/// Writes `word` × 10^-`scale` with so many digits behind the point, to a buffer of at least 24 characters,
/// and returns their end.
char* write_number(char* out, std::int64_t word, std::uint32_t scale) noexcept;

} // namespace core
