// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/digit_text.h"

#include <core/numbers/numeric.h>
#include <core/numbers/settings.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace core {

using namespace limbs;

template <class Char>
Numeric Numeric::read(std::basic_string_view<Char> text, const Char** end) {
    const Char* const begin = text.data();
    const Char* const stop = begin + text.size();
    const Char* p = begin;
    while (p != stop && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r')) {
        ++p;
    }
    const bool negative = p != stop && *p == '-';
    if (p != stop && (*p == '-' || *p == '+')) {
        ++p;
    }
    const Char* whole = p;
    const Char* const whole_end = digits_end(p, stop);
    const Char* fraction = whole_end;
    const Char* fraction_end = whole_end;
    if (whole_end != stop && *whole_end == '.') {
        fraction = whole_end + 1;
        fraction_end = digits_end(fraction, stop);
    }
    const bool found = whole != whole_end || fraction != fraction_end;
    if (end != nullptr) {
        *end = !found ? begin : fraction_end != whole_end ? fraction_end : whole_end;
    }

    // Zeros at either end cost no memory.
    while (whole != whole_end && *whole == '0') {
        ++whole;
    }
    while (fraction_end != fraction && fraction_end[-1] == '0') {
        --fraction_end;
    }
    const auto limbs_for = [](const Char* from, const Char* to) {
        return (static_cast<std::size_t>(to - from) + kLimbDigits - 1) / kLimbDigits;
    };
    const std::size_t whole_limbs = limbs_for(whole, whole_end);
    const std::size_t fraction_limbs = limbs_for(fraction, fraction_end);
    Numeric result;
    Limb* const limbs = result.reserve(whole_limbs + fraction_limbs);
    Limb* out = limbs + fraction_limbs;
    for (const Char* q = whole_end; q != whole;) {
        const std::size_t count = std::min(static_cast<std::size_t>(q - whole), kLimbDigits);
        q -= count;
        *out++ = read_digits(q, count);
    }
    out = limbs + fraction_limbs;
    for (const Char* q = fraction; q != fraction_end;) {
        const std::size_t count = std::min(static_cast<std::size_t>(fraction_end - q), kLimbDigits);
        *--out = read_digits(q, count) * kPowers[kLimbDigits - count];
        q += count;
    }
    result.finish(whole_limbs + fraction_limbs, static_cast<std::int64_t>(fraction_limbs), negative);
    return result;
}

Numeric Numeric::fromString(wstring_view text, const wchar** end) {
    return read(text, end);
}

Numeric Numeric::fromString(std::string_view text, const char** end) {
    return read(text, end);
}

std::optional<Numeric> Numeric::parse(std::string_view text) {
    const char* end = nullptr;
    Numeric number = read(text, &end);
    const bool whole = !text.empty() && text.front() > ' ' && end == text.data() + text.size();
    return whole ? std::optional(std::move(number)) : std::nullopt;
}

std::optional<Numeric> Numeric::parse(wstring_view text) {
    const wchar* end = nullptr;
    Numeric number = read(text, &end);
    const bool whole = !text.empty() && text.front() > u' ' && end == text.data() + text.size();
    return whole ? std::optional(std::move(number)) : std::nullopt;
}

namespace {

/// What lengthAndPrecision() says.
struct Extent {
    std::int64_t length;
    std::int64_t precision;
};

Extent extent_of(const Numeric& n) noexcept {
    constexpr std::int64_t digits = kLimbDigits;
    const auto limbs = n.limbs();
    if (limbs.empty()) {
        return {1, 0};
    }
    const std::int64_t fraction = n.fractionLimbs();
    const auto whole = static_cast<std::int64_t>(limbs.size()) - fraction;
    const std::int64_t precision =
        fraction > 0 ? digits * fraction - static_cast<std::int64_t>(trailing_zeros(limbs.front())) : 0;
    const std::int64_t above =
        whole > 0 ? digits * (whole - 1) + static_cast<std::int64_t>(digit_count(limbs.back())) : 0;
    return {precision + above, precision};
}

/// The whole part without leading zeros, "" below 1, then `point` if there is a fraction and `point` is not
/// zero, then the `precision` fraction digits. As a limb is written whole and cut off where its digits end,
/// the text may be followed by up to eight more characters where there is `room` for them.
template <class Char>
Char* write_number(Char* out, bool room, const Numeric& n, Char point, std::int64_t precision) noexcept {
    const auto limbs = n.limbs();
    const std::int64_t fraction = n.fractionLimbs();
    const auto count = static_cast<std::int64_t>(limbs.size());
    const Limb* const lowest = limbs.data();
    const Limb* const units =
        lowest + std::clamp<std::int64_t>(fraction, 0, count); // where the whole part begins
    const Limb* p = lowest + count;
    if (p != units) {
        --p;
        const std::size_t digits = digit_count(*p);
        out = write_leading(out, room, *p * kPowers[kLimbDigits - digits], digits);
    } else if (fraction > count) {
        *out = point;
        out += point != Char{} ? 1 : 0;
        out = std::fill_n(out, static_cast<std::size_t>(fraction - count) * kLimbDigits, Char{'0'});
        point = Char{};
    }
    const auto put_point = [&] {
        *out = point; // overwritten by the next limb unless the point belongs here
        out += p == units && point != Char{} ? 1 : 0;
    };
    for (const Limb* const last = lowest + (fraction > 0 ? 1 : 0); p != last;) {
        put_point();
        out = write_limb(out, *--p);
    }
    if (fraction > 0) {
        put_point();
        const auto digits = precision - static_cast<std::int64_t>(kLimbDigits) * (fraction - 1);
        return write_leading(out, room, *lowest, static_cast<std::size_t>(digits));
    }
    return std::fill_n(out, static_cast<std::size_t>(-fraction) * kLimbDigits, Char{'0'});
}

template <class Char>
std::size_t write_digits(Char* buffer, std::size_t capacity, const Numeric& n) noexcept {
    const auto [length, precision] = extent_of(n);
    const auto size = static_cast<std::size_t>(length);
    if (size <= capacity) {
        *buffer = Char{'0'};
        write_number(buffer, false, n, Char{}, precision);
    }
    return size;
}

template <class Char>
bool write_digits(Char* buffer, std::size_t length, std::size_t precision, const Numeric& n,
                  NumericRoundMode mode) {
    if (precision > length) {
        return false;
    }
    const Extent own = extent_of(n);
    if (own.precision > static_cast<std::int64_t>(precision)) {
        const auto digits = std::min<std::size_t>(precision, std::numeric_limits<std::int32_t>::max());
        return write_digits(buffer, length, precision, n.round(static_cast<std::int32_t>(digits), mode),
                            mode);
    }
    const std::size_t whole = n.sign() == 0 ? 0 : static_cast<std::size_t>(own.length - own.precision);
    if (whole > length - precision) {
        return false;
    }
    Char* out = std::fill_n(buffer, length - precision - whole, Char{'0'});
    out = write_number(out, false, n, Char{}, own.precision);
    std::fill(out, buffer + length, Char{'0'});
    return true;
}

template <class Char>
std::size_t write_text(Char* buffer, std::size_t capacity, const Numeric& n) noexcept {
    const auto [length, precision] = extent_of(n);
    const bool negative = n.sign() < 0;
    const bool whole = length > precision; // there are digits in front of the point, if only a zero's
    const std::size_t size =
        static_cast<std::size_t>(length) + (negative ? 1 : 0) + (whole ? 0 : 1) + (precision == 0 ? 0 : 1);
    if (size > capacity) {
        return size;
    }
    Char* out = buffer;
    if (negative) {
        *out++ = Char{'-'};
    }
    if (!whole || n.sign() == 0) {
        *out++ = Char{'0'};
    }
    write_number(out, capacity - size >= kLimbDigits, n, Char{'.'}, precision);
    return size;
}

} // namespace

void Numeric::lengthAndPrecision(std::int64_t& length, std::int64_t& precision) const noexcept {
    const Extent extent = extent_of(*this);
    length = extent.length;
    precision = extent.precision;
}

std::size_t Numeric::digits(char* buffer, std::size_t capacity) const noexcept {
    return write_digits(buffer, capacity, *this);
}

std::size_t Numeric::digits(wchar* buffer, std::size_t capacity) const noexcept {
    return write_digits(buffer, capacity, *this);
}

bool Numeric::digits(char* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const {
    return write_digits(buffer, length, precision, *this, mode);
}

bool Numeric::digits(wchar* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const {
    return write_digits(buffer, length, precision, *this, mode);
}

std::size_t Numeric::toString(wchar* buffer, std::size_t capacity) const noexcept {
    return write_text(buffer, capacity, *this);
}

std::size_t Numeric::toString(char* buffer, std::size_t capacity) const noexcept {
    return write_text(buffer, capacity, *this);
}

wstring Numeric::toString() const {
    wchar small[64];
    const std::size_t size = write_text(small, std::size(small), *this);
    if (size <= std::size(small)) {
        return {small, size};
    }
    wstring text(size, u'0');
    write_text(text.data(), size, *this);
    return text;
}

} // namespace core
