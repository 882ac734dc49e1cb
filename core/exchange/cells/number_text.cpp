// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/number_text.h"

#include <core/strings/integer_text.h>

#include <charconv>
#include <cstring>
#include <string>

namespace core {
namespace {

/// An exponent beyond this is an attack, not a number.
constexpr int kMostExponent = 1000;
/// So many digits fit a word.
constexpr std::ptrdiff_t kWordDigits = 18;

bool is_digit_byte(char c) noexcept {
    return static_cast<unsigned char>(c - '0') < 10;
}

/// With an exponent, or more digits than a word has.
std::optional<NumberText> read_wide(std::string_view text) {
    const std::size_t mark = text.find_first_of("eE");
    if (text.starts_with('+'))
        return std::nullopt; // a second sign would be read
    const auto mantissa = Numeric::parse(text.substr(0, mark));
    if (!mantissa)
        return std::nullopt;
    Numeric number = *mantissa;
    if (mark != std::string_view::npos) {
        std::string_view digits = text.substr(mark + 1);
        if (digits.starts_with('+') && !digits.starts_with("+-")) // a second sign would be read
            digits.remove_prefix(1);
        int exponent = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (error != std::errc() || end != digits.data() + digits.size() || digits.empty() ||
            exponent > kMostExponent || exponent < -kMostExponent)
            return std::nullopt;
        // A power of ten written out, since a division would round.
        const std::string zeros(static_cast<std::size_t>(exponent < 0 ? -exponent : exponent), '0');
        if (exponent < 0)
            number *= Numeric::fromString("0." + zeros.substr(1) + "1");
        else
            number *= Numeric::fromString("1" + zeros);
    }
    return number_text(number);
}

} // namespace

std::optional<NumberText> read_number(std::string_view text) {
    const char* at = text.data();
    const char* const end = at + text.size();
    const bool negative = at != end && *at == '-';
    const bool positive = at != end && *at == '+';
    at += negative || positive ? 1 : 0;
    const char* const whole = at;
    std::uint64_t value = 0;
    for (; at != end && is_digit_byte(*at) && at - whole <= kWordDigits; ++at)
        value = value * 10 + static_cast<unsigned>(*at - '0');
    const std::ptrdiff_t wholeDigits = at - whole;
    std::ptrdiff_t fraction = 0;
    bool point = false;
    if (at != end && *at == '.') {
        point = true;
        const char* const begin = ++at;
        for (; at != end && is_digit_byte(*at) && wholeDigits + (at - begin) <= kWordDigits; ++at)
            value = value * 10 + static_cast<unsigned>(*at - '0');
        fraction = at - begin;
    }
    const bool padded = wholeDigits > 1 && *whole == '0';
    if (wholeDigits + fraction == 0)
        return std::nullopt;
    if (at != end || wholeDigits + fraction > kWordDigits) {
        if (at != end && *at != 'e' && *at != 'E' && *at != '.' && !is_digit_byte(*at))
            return std::nullopt;
        auto read = read_wide(positive ? text.substr(1) : text);
        if (read)
            read->padded = padded;
        return read;
    }
    NumberText read;
    read.word = negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
    read.digits = static_cast<std::uint8_t>(fraction);
    read.padded = padded;
    read.plain =
        !positive && !padded && wholeDigits != 0 && point == (fraction != 0) && (value != 0 || !negative);
    return read;
}

NumberText number_text(const Numeric& number) {
    NumberText text;
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    const auto word =
        precision <= Numeric::kMaxScale ? number.scaled(static_cast<std::uint32_t>(precision)) : std::nullopt;
    if (word) {
        text.word = *word;
        text.digits = static_cast<std::uint8_t>(precision);
    } else {
        text.wide = number;
    }
    return text;
}

char* write_number(char* out, std::int64_t word, std::uint32_t scale) noexcept {
    char digits[20];
    const std::uint64_t magnitude =
        word < 0 ? ~static_cast<std::uint64_t>(word) + 1 : static_cast<std::uint64_t>(word);
    const char* const end = std::to_chars(digits, digits + sizeof digits, magnitude).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    if (word < 0)
        *out++ = '-';
    if (scale == 0) {
        std::memcpy(out, digits, count);
        return out + count;
    }
    const std::size_t whole = count > scale ? count - scale : 0;
    if (whole == 0)
        *out++ = '0';
    std::memcpy(out, digits, whole);
    out += whole;
    *out++ = '.';
    for (std::size_t i = count - whole; i < scale; ++i)
        *out++ = '0';
    std::memcpy(out, digits + whole, count - whole);
    return out + (count - whole);
}

} // namespace core
