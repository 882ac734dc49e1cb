// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/digit_text.h"

#include <core/numbers/numeric.h>

#include <algorithm>
#include <limits>

namespace core {

using namespace limbs;

template <class Char>
Numeric Numeric::parse(std::basic_string_view<Char> text, const Char** end) {
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
    return parse(text, end);
}

Numeric Numeric::fromString(std::string_view text, const char** end) {
    return parse(text, end);
}

/// The whole part without leading zeros, "" below 1, then `point` if there is a fraction and `point` is not
/// zero, then the `precision` fraction digits. As a limb is written whole and cut off where its digits
/// end, the text may spill over up to `limit`.
template <class Char>
Char* Numeric::writeNumber(Char* out, const Char* limit, Char point, std::int64_t precision) const noexcept {
    const Limb* p = limbs_ + count_;
    const Limb* const units = limbs_ + std::clamp(fraction_, 0, count_); // the lowest limb of the whole part
    if (p != units) {
        --p;
        const std::size_t digits = digit_count(*p);
        out = write_leading(out, limit, *p * kPowers[kLimbDigits - digits], digits);
    } else if (fraction_ > count_) {
        *out = point;
        out += point != Char{} ? 1 : 0;
        out = std::fill_n(out, static_cast<std::size_t>(fraction_ - count_) * kLimbDigits, Char{'0'});
        point = Char{};
    }
    const auto put_point = [&] {
        *out = point; // overwritten by the next limb unless the point belongs here
        out += p == units && point != Char{} ? 1 : 0;
    };
    for (const Limb* const last = limbs_ + (fraction_ > 0 ? 1 : 0); p != last;) {
        put_point();
        out = write_limb(out, *--p);
    }
    if (fraction_ > 0) {
        put_point();
        const auto above = static_cast<std::int64_t>(kLimbDigits) * (fraction_ - 1);
        return write_leading(out, limit, limbs_[0], static_cast<std::size_t>(precision - above));
    }
    return std::fill_n(out, static_cast<std::size_t>(-fraction_) * kLimbDigits, Char{'0'});
}

template <class Char>
std::size_t Numeric::writeDigits(Char* buffer, std::size_t capacity) const noexcept {
    std::int64_t length = 0;
    std::int64_t precision = 0;
    lengthAndPrecision(length, precision);
    const auto size = static_cast<std::size_t>(length);
    if (size <= capacity) {
        *buffer = Char{'0'};
        writeNumber(buffer, buffer + size, Char{}, precision);
    }
    return size;
}

template <class Char>
bool Numeric::writeDigits(Char* buffer, std::size_t length, std::size_t precision,
                          NumericRoundMode mode) const {
    if (precision > length) {
        return false;
    }
    std::int64_t own_length = 0;
    std::int64_t own_precision = 0;
    lengthAndPrecision(own_length, own_precision);
    if (own_precision > static_cast<std::int64_t>(precision)) {
        const auto digits = std::min<std::size_t>(precision, std::numeric_limits<std::int32_t>::max());
        return round(static_cast<std::int32_t>(digits), mode).writeDigits(buffer, length, precision, mode);
    }
    const std::size_t whole = count_ == 0 ? 0 : static_cast<std::size_t>(own_length - own_precision);
    if (whole > length - precision) {
        return false;
    }
    Char* out = std::fill_n(buffer, length - precision - whole, Char{'0'});
    out = writeNumber(out, buffer + length, Char{}, own_precision);
    std::fill(out, buffer + length, Char{'0'});
    return true;
}

template <class Char>
std::size_t Numeric::writeText(Char* buffer, std::size_t capacity) const noexcept {
    std::int64_t length = 0;
    std::int64_t precision = 0;
    lengthAndPrecision(length, precision);
    const bool whole = length > precision; // there are digits in front of the point, if only a zero's
    const std::size_t size =
        static_cast<std::size_t>(length) + (negative() ? 1 : 0) + (whole ? 0 : 1) + (precision == 0 ? 0 : 1);
    if (size > capacity) {
        return size;
    }
    Char* out = buffer;
    if (negative()) {
        *out++ = Char{'-'};
    }
    if (!whole || count_ == 0) {
        *out++ = Char{'0'};
    }
    writeNumber(out, buffer + capacity, Char{'.'}, precision);
    return size;
}

std::size_t Numeric::digits(char* buffer, std::size_t capacity) const noexcept {
    return writeDigits(buffer, capacity);
}

std::size_t Numeric::digits(wchar* buffer, std::size_t capacity) const noexcept {
    return writeDigits(buffer, capacity);
}

bool Numeric::digits(char* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const {
    return writeDigits(buffer, length, precision, mode);
}

bool Numeric::digits(wchar* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const {
    return writeDigits(buffer, length, precision, mode);
}

std::size_t Numeric::toString(wchar* buffer, std::size_t capacity) const noexcept {
    return writeText(buffer, capacity);
}

std::size_t Numeric::toString(char* buffer, std::size_t capacity) const noexcept {
    return writeText(buffer, capacity);
}

wstring Numeric::toString() const {
    wchar small[64];
    const std::size_t size = writeText(small, std::size(small));
    if (size <= std::size(small)) {
        return {small, size};
    }
    wstring text(size, u'0');
    writeText(text.data(), size);
    return text;
}

} // namespace core
