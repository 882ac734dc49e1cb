// SPDX-License-Identifier: Apache-2.0
#include "core/lists/float_token.h"
#include "core/lists/token_read.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>

namespace core::detail {
namespace {

/// Whether a decimal that no floating type holds is too large, rather than too small. It is not zero.
bool is_large(const char* at, const char* end) noexcept {
    constexpr long kMax = 1'000'000'000;
    long power = 0; // of the first digit that is not zero
    bool found = false;
    bool fraction = false;
    for (; at != end && *at != 'e' && *at != 'E'; ++at) {
        if (*at == '.')
            fraction = true;
        else if (!found && (*at == '0' || *at == '-'))
            power -= fraction && *at == '0' ? 1 : 0;
        else {
            found = true;
            power += fraction ? 0 : 1;
        }
    }
    long exponent = 0;
    if (at != end) {
        ++at;
        const bool negative = at != end && *at == '-';
        if (at != end && (*at == '-' || *at == '+'))
            ++at;
        for (; at != end && exponent < kMax; ++at)
            exponent = exponent * 10 + (*at - '0');
        exponent = negative ? -exponent : exponent;
    }
    return power + exponent > 0;
}

/// The nearest value of the type, an infinity or zero when it is out of range. False
/// when `text` is not a number.
template <class Float>
bool convert(const char* begin, const char* end, Float& value) noexcept {
    value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error == std::errc::result_out_of_range) {
        const Float magnitude = is_large(begin, end) ? std::numeric_limits<Float>::infinity() : Float{0};
        value = *begin == '-' ? -magnitude : magnitude;
    }
    return error != std::errc::invalid_argument && stop == end;
}

} // namespace

bool read_double(UnitSource& source, double& value) {
    std::array<char, FloatToken::kMaxLength> text;
    FloatToken token;
    for (;;) {
        const int unit = source.peek();
        const std::size_t length = token.length();
        const FloatToken::Step step = token.next(unit);
        if (step == FloatToken::Step::fail)
            return false;
        if (step == FloatToken::Step::accept)
            break;
        text[length] = static_cast<char>(unit);
        source.skip();
    }
    // Tokens without digits, "." among them, are zero.
    static_cast<void>(convert(text.data(), text.data() + token.length(), value));
    return true;
}

bool read_float(UnitSource& source, float& value) {
    std::string text;
    const auto take = [&](auto... units) {
        const int unit = source.peek();
        if (((unit != units) && ...))
            return false;
        text.push_back(static_cast<char>(unit));
        source.skip();
        return true;
    };
    const auto take_digits = [&] {
        bool found = false;
        while (take('0', '1', '2', '3', '4', '5', '6', '7', '8', '9'))
            found = true;
        return found;
    };
    if (!take('-'))
        static_cast<void>(source.skipIf(u'+'));
    bool found = take_digits();
    if (take('.'))
        found = take_digits() || found;
    if (found && take('e', 'E')) {
        static_cast<void>(take('-', '+'));
        take_digits();
    }
    if (!convert(text.data(), text.data() + text.size(), value)) {
        value = 0;
        return false;
    }
    if (value > std::numeric_limits<float>::max() || value < -std::numeric_limits<float>::max()) {
        value = value < 0 ? -std::numeric_limits<float>::max() : std::numeric_limits<float>::max();
        return false;
    }
    return true;
}

} // namespace core::detail
