// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/numbers/numeric.h>

/// How the numbers, strings and dates of a type description are limited.
///
/// Each class is a value: compared by its fields, safe to read on any thread. `fits` says whether a payload
/// can stay as it is and costs next to nothing; `adjust` gives the payload that is stored in its place.
/// `merge` widens these qualifiers until they admit what either admits, and `isSubset` tells that whatever
/// fits these fits the other ones too.
namespace core {

class ListInStream;
class ListOutStream;

/// A number of decimal digits, some of them behind the point, and the sign.
class CORE_API NumericQualifiers {
  public:
    /// Every number.
    constexpr NumericQualifiers() noexcept = default;
    /// `digits` in all, 0 for no limit, of which `fractionDigits` stand behind the point. There are never
    /// more fraction digits than digits.
    constexpr NumericQualifiers(std::uint32_t digits, std::uint32_t fractionDigits,
                                bool nonnegative = false) noexcept
        : digits_(digits), fractionDigits_(fractionDigits < digits ? fractionDigits : digits),
          nonnegative_(nonnegative) {}

    [[nodiscard]] constexpr std::uint32_t digits() const noexcept { return digits_; }
    [[nodiscard]] constexpr std::uint32_t fractionDigits() const noexcept { return fractionDigits_; }
    [[nodiscard]] constexpr std::uint32_t integerDigits() const noexcept { return digits_ - fractionDigits_; }
    [[nodiscard]] constexpr bool nonnegative() const noexcept { return nonnegative_; }
    friend constexpr bool operator==(const NumericQualifiers&, const NumericQualifiers&) = default;
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>((digits_ * 31 + fractionDigits_) * 2 + nonnegative_);
    }

    [[nodiscard]] bool fits(const Numeric& value) const noexcept;
    /// A negative number where none is allowed becomes 0; one with too many integer digits becomes the
    /// largest number of its sign that is allowed; one with too many fraction digits is rounded in the mode
    /// of the process. NumericException (overflow) when that largest number has more than 100 million digits.
    [[nodiscard]] Numeric adjust(const Numeric& value) const;

    NumericQualifiers& merge(const NumericQualifiers& other) noexcept;
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
    /// Every string.
    constexpr StringQualifiers() noexcept = default;
    /// 0 is no limit.
    constexpr StringQualifiers(std::uint32_t length, bool varying) noexcept
        : length_(length), varying_(varying) {}

    [[nodiscard]] constexpr std::uint32_t length() const noexcept { return length_; }
    /// Shorter strings stay as they are; they are filled up with blanks otherwise.
    [[nodiscard]] constexpr bool varying() const noexcept { return varying_; }
    friend constexpr bool operator==(const StringQualifiers&, const StringQualifiers&) = default;
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(length_ * 2 + varying_);
    }

    [[nodiscard]] constexpr bool fits(wstring_view text) const noexcept {
        return length_ == 0 || text.size() == length_ || (varying_ && text.size() < length_);
    }
    /// Cut to the length, or filled up to a fixed one. ConverterException ("IDS_STRING_TOO_LONG") when more
    /// than 100 million units would be filled up.
    [[nodiscard]] wstring adjust(wstring_view text) const;

    StringQualifiers& merge(const StringQualifiers& other) noexcept;
    [[nodiscard]] bool isSubset(const StringQualifiers& other) const noexcept;

  private:
    std::uint32_t length_ = 0;
    bool varying_ = true;
};

/// The parts of a date that are kept. The numbers are stored.
enum class DateFractions : std::uint32_t { date = 1, time = 2, dateTime = 3 };

class CORE_API DateQualifiers {
  public:
    /// Every date.
    constexpr DateQualifiers() noexcept = default;
    explicit constexpr DateQualifiers(DateFractions fractions) noexcept : fractions_(fractions) {}

    [[nodiscard]] constexpr DateFractions fractions() const noexcept { return fractions_; }
    friend constexpr bool operator==(const DateQualifiers&, const DateQualifiers&) = default;
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(fractions_);
    }

    [[nodiscard]] constexpr bool fits(Date value) const noexcept { return adjust(value) == value; }
    /// The date alone begins its day; the time alone is that of 0001-01-01, in whole seconds.
    [[nodiscard]] constexpr Date adjust(Date value) const noexcept;

    DateQualifiers& merge(const DateQualifiers& other) noexcept;
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

/// Written as lists of their fields. Reading throws ListStreamException for text that was never written; the
/// qualifiers are then unchanged.
CORE_API void to_stream(ListOutStream& out, const NumericQualifiers& qualifiers);
CORE_API void to_stream(ListOutStream& out, const StringQualifiers& qualifiers);
CORE_API void to_stream(ListOutStream& out, const DateQualifiers& qualifiers);
CORE_API void from_stream(ListInStream& in, NumericQualifiers& qualifiers);
CORE_API void from_stream(ListInStream& in, StringQualifiers& qualifiers);
CORE_API void from_stream(ListInStream& in, DateQualifiers& qualifiers);

} // namespace core
