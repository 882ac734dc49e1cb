// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/numbers/errors.h>
#include <core/runtime/errors.h>
#include <core/types/qualifiers.h>

#include <algorithm>
#include <limits>

namespace core {
namespace {

/// Beyond these the largest number is refused, as an exact power of so many digits is.
constexpr std::uint32_t kMostDigits = 100'000'000;
/// Beyond these a fixed length is not filled up: a few characters of a description must not take all memory.
constexpr std::uint32_t kMostFilled = 100'000'000;

struct DigitCounts {
    explicit DigitCounts(const Numeric& value) noexcept {
        value.lengthAndPrecision(integer, fraction);
        integer -= fraction;
    }
    std::int64_t integer = 0;
    std::int64_t fraction = 0;
};

} // namespace

// Numbers

bool NumericQualifiers::fits(const Numeric& value) const noexcept {
    if (nonnegative_ && value.sign() < 0)
        return false;
    // Zero is written with one integer digit, but needs none.
    if (digits_ == 0 || value.sign() == 0)
        return true;
    const DigitCounts counts(value);
    return counts.integer <= integerDigits() && counts.fraction <= fractionDigits_;
}

Numeric NumericQualifiers::adjust(const Numeric& value) const {
    if (fits(value))
        return value;
    if (nonnegative_ && value.sign() < 0)
        return {};
    if (DigitCounts(value).integer > integerDigits())
        return value.sign() < 0 ? -largest() : largest();
    constexpr std::uint32_t most = std::numeric_limits<std::int32_t>::max();
    return value.round(static_cast<std::int32_t>(std::min(fractionDigits_, most)));
}

/// As many nines as there are digits.
Numeric NumericQualifiers::largest() const {
    if (digits_ > kMostDigits)
        throw NumericException(NumericException::Error::overflow);
    const Numeric ten(10);
    return ten.pow(integerDigits()) - ten.pow(-Numeric(fractionDigits_));
}

NumericQualifiers& NumericQualifiers::merge(const NumericQualifiers& other) noexcept {
    const bool nonnegative = nonnegative_ && other.nonnegative_;
    const std::uint32_t fraction = std::max(fractionDigits_, other.fractionDigits_);
    const std::uint32_t integer = std::max(integerDigits(), other.integerDigits());
    const std::uint32_t digits = integer + fraction;
    const bool limited = digits_ != 0 && other.digits_ != 0 && digits >= integer; // the sum may not fit
    return *this = limited ? NumericQualifiers(digits, fraction, nonnegative)
                           : NumericQualifiers(0, 0, nonnegative);
}

bool NumericQualifiers::isSubset(const NumericQualifiers& other) const noexcept {
    if (other.nonnegative_ && !nonnegative_)
        return false;
    return other.digits_ == 0 || (digits_ != 0 && integerDigits() <= other.integerDigits() &&
                                  fractionDigits_ <= other.fractionDigits_);
}

// Strings

wstring StringQualifiers::adjust(wstring_view text) const {
    wstring adjusted(length_ != 0 ? text.substr(0, length_) : text);
    if (!varying_ && adjusted.size() < length_) {
        if (length_ > kMostFilled)
            throw_error<ConverterException>(messages::kStringTooLong);
        adjusted.resize(length_, u' ');
    }
    return adjusted;
}

StringQualifiers& StringQualifiers::merge(const StringQualifiers& other) noexcept {
    if (length_ == 0 || other.length_ == 0)
        return *this = StringQualifiers();
    return *this = StringQualifiers(std::max(length_, other.length_), varying_ || other.varying_);
}

bool StringQualifiers::isSubset(const StringQualifiers& other) const noexcept {
    if (other.length_ == 0)
        return true;
    if (length_ == 0)
        return false;
    return other.varying_ ? length_ <= other.length_ : !varying_ && length_ == other.length_;
}

// Dates

DateQualifiers& DateQualifiers::merge(const DateQualifiers& other) noexcept {
    // The numbers are sets of the two parts.
    fractions_ = static_cast<DateFractions>(static_cast<std::uint32_t>(fractions_) |
                                            static_cast<std::uint32_t>(other.fractions_));
    return *this;
}

bool DateQualifiers::isSubset(const DateQualifiers& other) const noexcept {
    return DateQualifiers(*this).merge(other) == other;
}

// Lists

namespace {

template <class... Fields>
void put_list(ListOutStream& out, const Fields&... fields) {
    out.putBeginOfList();
    (out.put(fields), ...);
    out.putEndOfList();
}

template <class... Fields>
void get_list(ListInStream& in, Fields&... fields) {
    in.getBeginOfList();
    (in.get(fields), ...);
    in.getEndOfList();
}

} // namespace

void to_stream(ListOutStream& out, const NumericQualifiers& qualifiers) {
    put_list(out, qualifiers.digits(), qualifiers.fractionDigits(), qualifiers.nonnegative());
}

void to_stream(ListOutStream& out, const StringQualifiers& qualifiers) {
    put_list(out, qualifiers.length(), qualifiers.varying());
}

void to_stream(ListOutStream& out, const DateQualifiers& qualifiers) {
    put_list(out, static_cast<std::uint32_t>(qualifiers.fractions()));
}

void from_stream(ListInStream& in, NumericQualifiers& qualifiers) {
    std::uint32_t digits = 0;
    std::uint32_t fractionDigits = 0;
    bool nonnegative = false;
    get_list(in, digits, fractionDigits, nonnegative);
    if (fractionDigits > digits)
        throw_malformed();
    qualifiers = NumericQualifiers(digits, fractionDigits, nonnegative);
}

void from_stream(ListInStream& in, StringQualifiers& qualifiers) {
    std::uint32_t length = 0;
    bool varying = false;
    get_list(in, length, varying);
    qualifiers = StringQualifiers(length, varying);
}

void from_stream(ListInStream& in, DateQualifiers& qualifiers) {
    std::uint32_t fractions = 0;
    get_list(in, fractions);
    if (fractions < 1 || fractions > 3)
        throw_malformed();
    qualifiers = DateQualifiers(static_cast<DateFractions>(fractions));
}

} // namespace core
