// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace core {

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

/// Writes `word` × 10^-`scale` with so many digits behind the point, to a buffer of at least 24 characters,
/// and returns their end.
char* write_number(char* out, std::int64_t word, std::uint32_t scale) noexcept;

} // namespace core
