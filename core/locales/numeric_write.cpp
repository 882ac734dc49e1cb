// SPDX-License-Identifier: Apache-2.0
#include "core/locales/numeric_layout.h"

#include <algorithm>
#include <cstring>

namespace core {
namespace {

/// The decimal digits of a number without its sign.
class DigitText {
  public:
    explicit DigitText(const Numeric& number) {
        char* text = small_;
        std::size_t size = number.toString(small_, std::size(small_));
        if (size > std::size(small_)) {
            large_.resize(size);
            text = large_.data();
            size = number.toString(text, size);
        }
        std::string_view all(text, size);
        all.remove_prefix(number.sign() < 0 ? 1 : 0);
        const std::size_t point = std::min(all.find('.'), all.size());
        whole = all.substr(0, point);
        fraction = all.substr(std::min(point + 1, all.size()));
    }
    DigitText(const DigitText&) = delete; // its views are of its own text
    DigitText& operator=(const DigitText&) = delete;

    /// The power of ten of the first digit that counts.
    [[nodiscard]] std::int64_t exponent() const noexcept {
        if (whole != "0")
            return static_cast<std::int64_t>(whole.size()) - 1;
        const std::size_t zeros = fraction.find_first_not_of('0');
        return zeros == std::string_view::npos ? 0 : -static_cast<std::int64_t>(zeros) - 1;
    }

    std::string_view whole;
    std::string_view fraction;

  private:
    char small_[64];
    std::string large_;
};

wchar* put_text(wchar* out, wstring_view text) noexcept {
    std::memcpy(out, text.data(), text.size() * sizeof(wchar));
    return out + text.size();
}

wchar* put_digits(wchar* out, const DigitUnits& units, std::string_view digits) noexcept {
    for (const char digit : digits)
        out = units.put(out, static_cast<std::size_t>(digit - '0'));
    return out;
}

wchar* put_zeros(wchar* out, const DigitUnits& units, std::size_t count) noexcept {
    for (; count != 0; --count)
        out = units.put(out, 0);
    return out;
}

/// Writes the whole part, filled with zeros in front, in groups.
wchar* put_whole(wchar* out, const NumericLayout& layout, std::string_view digits, std::size_t count,
                 std::size_t separators) noexcept {
    const NumberGrouping& grouping = layout.grouping;
    const auto put = [&](std::size_t length) {
        const std::size_t zeros = std::min(count - digits.size(), length);
        out = put_zeros(out, layout.digits, zeros);
        out = put_digits(out, layout.digits, digits.substr(0, length - zeros));
        digits.remove_prefix(length - zeros);
        count -= length;
    };
    if (separators == 0) {
        put(count);
        return out;
    }
    put(count - grouping.last - (separators - 1) * grouping.other);
    for (; separators != 0; --separators) {
        out = put_text(out, layout.group);
        put(separators == 1 ? grouping.last : grouping.other);
    }
    return out;
}

/// Writes digits, of which the fraction has at least `least`.
void compose(const NumericLayout& layout, const DigitText& shown, bool negative, std::size_t least,
             wstring& text) {
    const wstring& prefix = negative ? layout.affixes.negativePrefix : layout.affixes.prefix;
    const wstring& suffix = negative ? layout.affixes.negativeSuffix : layout.affixes.suffix;
    const std::size_t whole = std::max(layout.whole, shown.whole.size());
    const std::size_t separators = layout.group.empty() ? 0 : layout.grouping.separators(whole);
    const std::size_t fraction = std::max(least, shown.fraction.size());
    text.resize(prefix.size() + (whole + fraction) * layout.digits.width() +
                separators * layout.group.size() + (fraction != 0 ? layout.point.size() : 0) + suffix.size());
    wchar* out = put_text(text.data(), prefix);
    out = put_whole(out, layout, shown.whole, whole, separators);
    if (fraction != 0) {
        out = put_text(out, layout.point);
        out = put_digits(out, layout.digits, shown.fraction);
        out = put_zeros(out, layout.digits, fraction - shown.fraction.size());
    }
    put_text(out, suffix);
}

/// Rounds to the digits that count. A carry (9.99 to 10.0) moves the first of them.
void write_significant(const NumericLayout& layout, Numeric number, wstring& text) {
    if (layout.significant.most != DigitRange::kNoLimit) {
        const std::int64_t places =
            static_cast<std::int64_t>(layout.significant.most) - 1 - DigitText(number).exponent();
        number =
            number.round(static_cast<std::int32_t>(std::clamp<std::int64_t>(places, INT32_MIN, INT32_MAX)));
    }
    const DigitText shown(number);
    const std::int64_t least = static_cast<std::int64_t>(layout.significant.least) - 1 - shown.exponent();
    compose(layout, shown, number.sign() < 0, static_cast<std::size_t>(std::max<std::int64_t>(least, 0)),
            text);
}

} // namespace

void NumericLayout::write(const Numeric& number, wstring& text) const {
    Numeric changed;
    const Numeric* shown = &number;
    if (factor.sign() != 0)
        shown = &(changed = number * factor);
    if (fraction.most != DigitRange::kNoLimit) {
        std::int64_t length = 0;
        std::int64_t precision = 0;
        shown->lengthAndPrecision(length, precision);
        if (precision > static_cast<std::int64_t>(fraction.most))
            shown = &(changed = shown->round(static_cast<std::int32_t>(fraction.most)));
    }
    if (shown->sign() == 0 && zero)
        text = *zero;
    else if (shown->sign() < 0 && negative)
        text = *negative;
    else if (significant.least != 0)
        write_significant(*this, *shown, text);
    else
        compose(*this, DigitText(*shown), shown->sign() < 0, fraction.least, text);
}

} // namespace core
