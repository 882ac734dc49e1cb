// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/numbers/numeric.h>

/// How the numbers, strings and dates of a type description are limited.
///
/// Each class is a value: compared by its fields, safe to read on any thread. A payload that fits stays as it
/// is; another one is adjusted, which gives what is stored in its place.
namespace core {

class ListInStream;
class ListOutStream;

/// A number of decimal digits, some of them behind the point, and the sign.
class CORE_API NumericQualifiers {
  public:
    /// Admits every number.
    constexpr NumericQualifiers() noexcept = default;
    /// Admits numbers of up to `digits` decimal digits, 0 for no limit, of which `fractionDigits` are behind
    /// the point. More fraction digits than digits count as all of the digits.
    constexpr NumericQualifiers(std::uint32_t digits, std::uint32_t fractionDigits,
                                bool nonnegative = false) noexcept
        : digits_(digits), fractionDigits_(fractionDigits < digits ? fractionDigits : digits),
          nonnegative_(nonnegative) {}

    /// Returns how many digits there are in all; 0 means no limit.
    [[nodiscard]] constexpr std::uint32_t digits() const noexcept { return digits_; }
    /// Returns how many of the digits are behind the point.
    [[nodiscard]] constexpr std::uint32_t fractionDigits() const noexcept { return fractionDigits_; }
    /// Returns how many of the digits are in front of the point.
    [[nodiscard]] constexpr std::uint32_t integerDigits() const noexcept { return digits_ - fractionDigits_; }
    /// Says whether negative numbers are refused.
    [[nodiscard]] constexpr bool nonnegative() const noexcept { return nonnegative_; }
    /// Says whether all fields are equal.
    friend constexpr bool operator==(const NumericQualifiers&, const NumericQualifiers&) = default;
    /// Returns a hash; equal qualifiers have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>((digits_ * 31 + fractionDigits_) * 2 + nonnegative_);
    }

    /// Says whether a number stays as it is. Costs next to nothing.
    [[nodiscard]] bool fits(const Numeric& value) const noexcept;
    /// Returns what is stored in place of a number: 0 for a negative one where none is allowed, the largest
    /// number of its sign that is allowed for one with too many integer digits, and the number rounded in the
    /// mode of the process for one with too many fraction digits. Rounding comes last and may carry the
    /// number past the digits: 99.996 becomes 100 in four digits with two behind the point. Throws
    /// NumericException (overflow) when that largest number has more than 100 million digits.
    [[nodiscard]] Numeric adjust(const Numeric& value) const;

    /// Widens these qualifiers until they admit what either admits.
    NumericQualifiers& merge(const NumericQualifiers& other) noexcept;
    /// Says whether every number that fits these qualifiers fits the other ones, too.
    [[nodiscard]] bool isSubset(const NumericQualifiers& other) const noexcept;

  private:
    [[nodiscard]] Numeric largest() const;

    std::uint32_t digits_ = 0;
    std::uint32_t fractionDigits_ = 0;
    bool nonnegative_ = false;
};

/// A length in UTF-16 code units, which strings have at the most or exactly.
class CORE_API StringQualifiers {
  public:
    /// Admits every string.
    constexpr StringQualifiers() noexcept = default;
    /// Admits strings of up to `length` units when the length is varying, and of exactly so many otherwise; 0
    /// means no limit.
    constexpr StringQualifiers(std::uint32_t length, bool varying) noexcept
        : length_(length), varying_(varying) {}

    /// Returns the length in UTF-16 code units; 0 means no limit.
    [[nodiscard]] constexpr std::uint32_t length() const noexcept { return length_; }
    /// Says whether shorter strings stay as they are; otherwise they are filled up with blanks.
    [[nodiscard]] constexpr bool varying() const noexcept { return varying_; }
    /// Says whether all fields are equal.
    friend constexpr bool operator==(const StringQualifiers&, const StringQualifiers&) = default;
    /// Returns a hash; equal qualifiers have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(length_ * 2 + varying_);
    }

    /// Says whether a string stays as it is. Costs next to nothing.
    [[nodiscard]] constexpr bool fits(wstring_view text) const noexcept {
        return length_ == 0 || text.size() == length_ || (varying_ && text.size() < length_);
    }
    /// Returns the string cut to the length, or filled up with blanks to a fixed one. Throws
    /// ConverterException
    /// ("IDS_STRING_TOO_LONG") when it would be filled up to more than 100 million units.
    [[nodiscard]] wstring adjust(wstring_view text) const;

    /// Widens these qualifiers until they admit what either admits. Of two fixed lengths the longer one
    /// stays, to which shorter strings are filled up.
    StringQualifiers& merge(const StringQualifiers& other) noexcept;
    /// Says whether every string that fits these qualifiers fits the other ones, too.
    [[nodiscard]] bool isSubset(const StringQualifiers& other) const noexcept;

  private:
    std::uint32_t length_ = 0;
    bool varying_ = true;
};

/// The parts of a date that are kept. The numbers are stored.
enum class DateFractions : std::uint32_t {
    date = 1,    ///< year, month and day
    time = 2,    ///< hour, minute and second
    dateTime = 3 ///< everything
};

/// The parts of a date that a description keeps.
class CORE_API DateQualifiers {
  public:
    /// Admits every date.
    constexpr DateQualifiers() noexcept = default;
    /// Admits dates that have no other parts than these.
    explicit constexpr DateQualifiers(DateFractions fractions) noexcept : fractions_(fractions) {}

    /// Returns the parts that are kept.
    [[nodiscard]] constexpr DateFractions fractions() const noexcept { return fractions_; }
    /// Says whether the same parts are kept.
    friend constexpr bool operator==(const DateQualifiers&, const DateQualifiers&) = default;
    /// Returns a hash; equal qualifiers have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(fractions_);
    }

    /// Says whether a date stays as it is.
    [[nodiscard]] constexpr bool fits(Date value) const noexcept { return adjust(value) == value; }
    /// Returns the parts that are kept: the date alone is the beginning of its day, the time alone that of
    /// 0001-01-01, in whole seconds.
    [[nodiscard]] constexpr Date adjust(Date value) const noexcept;

    /// Keeps from now on the parts that either keeps.
    DateQualifiers& merge(const DateQualifiers& other) noexcept;
    /// Says whether every date that fits these qualifiers fits the other ones, too.
    [[nodiscard]] bool isSubset(const DateQualifiers& other) const noexcept;

  private:
    DateFractions fractions_ = DateFractions::dateTime;
};

constexpr Date DateQualifiers::adjust(Date value) const noexcept {
    switch (fractions_) {
    case DateFractions::date:
        return value.begOfDay();
    case DateFractions::time:
        return Date(1, 1, 1, value.getHour(), value.getMinute(), value.getSecond());
    case DateFractions::dateTime:
        break;
    }
    return value;
}

/// Writes the qualifiers of numbers as a list of their fields: digits, fraction digits, and whether negative
/// numbers are refused. Throws what the stream throws.
CORE_API void to_stream(ListOutStream& out, const NumericQualifiers& qualifiers);
/// Writes the qualifiers of strings as a list of their fields: the length, and whether it varies. Throws what
/// the stream throws.
CORE_API void to_stream(ListOutStream& out, const StringQualifiers& qualifiers);
/// Writes the qualifiers of dates as a list of one number, that of DateFractions. Throws what the stream
/// throws.
CORE_API void to_stream(ListOutStream& out, const DateQualifiers& qualifiers);
/// Reads the qualifiers of numbers. Throws ListStreamException for text that is not theirs, more fraction
/// digits than digits among it; the qualifiers are then unchanged.
CORE_API void from_stream(ListInStream& in, NumericQualifiers& qualifiers);
/// Reads the qualifiers of strings. Throws ListStreamException for text that is not theirs; the qualifiers
/// are then unchanged.
CORE_API void from_stream(ListInStream& in, StringQualifiers& qualifiers);
/// Reads the qualifiers of dates. Throws ListStreamException for text that is not theirs; the qualifiers are
/// then unchanged.
CORE_API void from_stream(ListInStream& in, DateQualifiers& qualifiers);

} // namespace core
