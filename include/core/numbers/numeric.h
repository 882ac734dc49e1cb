// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/settings.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

namespace core {

namespace limbs {
struct Lanes;
} // namespace limbs

/// A built-in integer that stands for a number: neither `bool` nor a character code.
template <class T>
concept NumericInteger =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
    !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

/// An exact decimal number of any length.
///
/// The value is sign × Σ limb[i] × 10^(9 × (i − fraction limbs)), with limbs in 0 ... 999 999 999, the least
/// significant first. After every operation
///  1. neither the lowest nor the highest limb is zero, so equal numbers have equal limbs;
///  2. zero has no limbs, no fraction limbs and a positive sign;
///  3. up to four limbs lie inside the object; more lie on the heap.
/// Fraction limbs may be negative: 10^9 is the one limb 1 with fraction limbs −1.
///
/// A value type: copies are independent, equality and order are those of the values. An operation
/// that throws leaves its operands as they were. Distinct objects may be used by distinct threads,
/// one object by several readers.
///
/// Every operation may throw an exception derived from std::bad_alloc ("bad allocation" when a number would
/// need more than `kMaxLimbs` limbs) unless it is noexcept; other failures are a NumericException.
class CORE_API Numeric {
  public:
    /// Nine decimal digits: 0 ... 999 999 999.
    using Limb = std::uint32_t;
    /// The limbs for which a number needs no heap block.
    static constexpr std::size_t kInlineLimbs = 4;
    /// The most limbs that a number may have.
    static constexpr std::size_t kMaxLimbs = 0x3FFFFFFF;

    /// Makes zero.
    Numeric() noexcept = default;
    /// Makes an equal number. Throws std::bad_alloc.
    Numeric(const Numeric& other);
    /// Takes the value over; `other` is then zero, or still has it where it lies inside the object.
    Numeric(Numeric&& other) noexcept;
    /// Makes the number of a built-in integer.
    template <NumericInteger T>
    Numeric(T value) noexcept;
    /// Makes the shortest decimal that reads back as `value`: 0.1 becomes 0.1. Throws NumericException,
    /// overflow for infinities and notANumber for NaN.
    Numeric(double value);
    /// Makes the shortest decimal that reads back as `value`, with the digits of the wider type. Throws as
    /// the constructor from `double` does.
    Numeric(long double value);
    /// A truth value is not a number.
    Numeric(bool) = delete;
    /// Frees the heap block, if there is one.
    ~Numeric() { release(); }

    /// Makes this number equal to `other`. Throws std::bad_alloc, with this number unchanged.
    Numeric& operator=(const Numeric& other);
    /// Takes the value over; `other` is then zero, or still has it where it lies inside the object.
    Numeric& operator=(Numeric&& other) noexcept;

    /// \name Arithmetic
    /// Addition, subtraction and multiplication are exact.
    /// @{

    /// Adds `other`. Throws std::bad_alloc.
    Numeric& operator+=(const Numeric& other) { return add(*this, *this, other, false); }
    /// Subtracts `other`. Throws std::bad_alloc.
    Numeric& operator-=(const Numeric& other) { return add(*this, *this, other, true); }
    /// Multiplies by `other`. Throws std::bad_alloc.
    Numeric& operator*=(const Numeric& other) { return multiply(*this, *this, other); }
    /// Divides by `other`. The quotient has (fraction limbs of this − those of other) + limbs of other + 2
    /// fraction limbs; it is cut off there and rounded half up by the one limb that follows. Throws
    /// NumericException (divideByZero) and std::bad_alloc.
    Numeric& operator/=(const Numeric& other) { return divide(*this, *this, other); }
    /// Leaves what the quotient, cut towards zero, leaves over: it has the sign of the dividend. The quotient
    /// is that of operator/=, rounded behind its last place, so that a divisor that begins some 27 places
    /// behind the point may leave more than itself. Throws NumericException (divideByZero) and
    /// std::bad_alloc.
    Numeric& operator%=(const Numeric& other) { return remainder(*this, *this, other); }

    friend Numeric operator+(const Numeric& a, const Numeric& b) { return made(add, a, b, false); }
    friend Numeric operator-(const Numeric& a, const Numeric& b) { return made(add, a, b, true); }
    friend Numeric operator*(const Numeric& a, const Numeric& b) { return made(multiply, a, b); }
    friend Numeric operator/(const Numeric& a, const Numeric& b) { return made(divide, a, b); }
    friend Numeric operator%(const Numeric& a, const Numeric& b) { return made(remainder, a, b); }

    /// Returns the number with the other sign. Throws std::bad_alloc.
    [[nodiscard]] Numeric operator-() const;
    /// Returns the number without its sign. Throws std::bad_alloc.
    [[nodiscard]] Numeric abs() const;
    /// Returns the largest whole number that is not above this one. Throws std::bad_alloc.
    [[nodiscard]] Numeric floor() const;
    /// Returns this number to a power: exact when the exponent is a whole number of up to nine digits (a
    /// negative one divides 1 by the positive power), else computed in `double`. Throws std::bad_alloc and
    /// NumericException: divideByZero for zero to a negative power, negativePower for a negative number to a
    /// power computed in `double`, overflow for a result that is not finite or an exact one of more than 100
    /// million digits.
    [[nodiscard]] Numeric pow(const Numeric& exponent) const;
    /// Returns the number rounded to `digits` fraction digits; −2 rounds to hundreds. `mode` decides exact
    /// halves only. Throws std::bad_alloc.
    [[nodiscard]] Numeric round(std::int32_t digits, NumericRoundMode mode) const;
    /// Returns the number rounded in the mode of the calling thread's process. Throws std::bad_alloc.
    [[nodiscard]] Numeric round(std::int32_t digits) const;
    /// @}

    /// \name Comparison
    /// @{

    /// Returns −1, 0 or 1: whether this number is below, equal to or above `other`.
    [[nodiscard]] int compare(const Numeric& other) const noexcept;
    /// Returns −1, 0 or 1: whether the number is below, equal to or above zero.
    [[nodiscard]] int sign() const noexcept { return sign_ != kPositive ? -1 : count_ != 0 ? 1 : 0; }
    friend bool operator==(const Numeric& a, const Numeric& b) noexcept { return a.equals(b); }
    friend std::strong_ordering operator<=>(const Numeric& a, const Numeric& b) noexcept {
        return a.compare(b) <=> 0;
    }
    /// @}

    /// \name Conversion to built-in types
    /// A number made from a floating type gives the same value back. A floating value is the one nearest to
    /// the highest limbs, as many as hold all the digits of the type; infinite when it is out of range.
    /// @{

    /// Returns the number without its fraction; what does not fit wraps modulo 2^32 (types of up to four
    /// bytes) or 2^64.
    template <NumericInteger T>
    explicit operator T() const noexcept {
        return static_cast<T>(toInteger());
    }
    /// Returns the nearest `double` to the three highest limbs.
    explicit operator double() const noexcept;
    /// Returns the `float` nearest to the `double`.
    explicit operator float() const noexcept { return static_cast<float>(static_cast<double>(*this)); }
    /// Returns the nearest `long double` to the highest limbs.
    explicit operator long double() const noexcept;
    /// @}

    /// \name Scaled integers
    /// The form of columns of numbers: whole multiples of 10^−`digits`, for up to `kMaxScale` digits.
    /// @{

    /// The most digits behind the point of a scaled integer.
    static constexpr std::uint32_t kMaxScale = 18;
    /// Returns this number times 10^`digits`, where that is a whole number below 2^63 in magnitude.
    [[nodiscard]] std::optional<std::int64_t> scaled(std::uint32_t digits) const noexcept;
    /// Returns `value` × 10^−`digits`, for `digits` up to kMaxScale.
    [[nodiscard]] static Numeric fromScaled(std::int64_t value, std::uint32_t digits);
    /// @}

    /// \name Decimal digits
    /// @{

    /// Sets `precision` to the number of fraction digits and `length` to that of all digits: (1, 0) for 0,
    /// (4, 1) for 120.5, (2, 2) for 0.05.
    void lengthAndPrecision(std::int64_t& length, std::int64_t& precision) const noexcept;
    /// Writes the `length` digits of lengthAndPrecision(), the last `precision` of which are the fraction,
    /// without sign and point, and returns their number. Nothing is written when it exceeds `capacity`.
    std::size_t digits(char* buffer, std::size_t capacity) const noexcept;
    /// Writes the same digits as code units.
    std::size_t digits(wchar* buffer, std::size_t capacity) const noexcept;
    /// Writes exactly `length` digits of the number rounded to `precision` fraction digits, filled with zeros
    /// on both sides; the last `precision` are the fraction. False, with nothing written, when the whole part
    /// needs more than `length` − `precision` digits or `precision` exceeds `length`. Throws std::bad_alloc.
    bool digits(char* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const;
    /// Writes the same digits as code units.
    bool digits(wchar* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const;
    /// @}

    /// \name Text
    /// Written: "-" in front of a negative number, the whole part ("0" if none exists), and "." with the
    /// fraction if there is one; no exponent, no grouping. Read: blanks, tabs, line feeds and carriage
    /// returns, an optional sign, digits with at most one "." among, before or behind them.
    /// @{

    /// Returns the number that as much of `text` spells as fits; `end`, when not null, receives the position
    /// where reading stopped. Without a digit the result is 0 and `end` the beginning of `text`. Throws
    /// std::bad_alloc.
    [[nodiscard]] static Numeric fromString(wstring_view text, const wchar** end = nullptr);
    /// Reads the same from bytes; a character that is not ASCII ends the number.
    [[nodiscard]] static Numeric fromString(std::string_view text, const char** end = nullptr);
    /// Returns the number that a whole text spells, or nothing for any other text. Throws std::bad_alloc.
    [[nodiscard]] static std::optional<Numeric> parse(std::string_view text);
    /// Returns the number that a text in UTF-16 spells in the same way.
    [[nodiscard]] static std::optional<Numeric> parse(wstring_view text);
    /// Reads a number and leaves the character behind it unread. False, with this number unchanged, when no
    /// digit was found; what looked like a number up to there is consumed. Throws std::bad_alloc.
    [[nodiscard]] bool fromStream(wistream& in);
    /// Returns the text. Throws std::bad_alloc.
    [[nodiscard]] wstring toString() const;
    /// Writes the text without a terminator and returns its length; the rest of the buffer may be
    /// overwritten. Nothing is written when the text exceeds `capacity`.
    std::size_t toString(wchar* buffer, std::size_t capacity) const noexcept;
    /// Writes the same text in ASCII.
    std::size_t toString(char* buffer, std::size_t capacity) const noexcept;
    /// Writes the text to `out` and returns it; a stream that does not take the text is marked bad. Throws
    /// std::bad_alloc.
    wostream& toStream(wostream& out) const;
    /// @}

    /// \name Representation
    /// @{

    /// Returns the limbs, the least significant first, borrowed until the number changes or goes.
    [[nodiscard]] std::span<const Limb> limbs() const noexcept { return {limbs_, limbCount()}; }
    /// Returns how many of the lowest limbs are the fraction; a negative number of them counts zero limbs
    /// that stand between the limbs and the point.
    [[nodiscard]] std::int32_t fractionLimbs() const noexcept { return fraction_; }
    /// @}

  private:
    static constexpr std::uint8_t kPositive = 1;
    static constexpr std::uint8_t kNegative = 255;
    static constexpr Limb kBase = 1'000'000'000;

    // Each returns `out`, which may be one of the operands.
    static Numeric& add(Numeric& out, const Numeric& a, const Numeric& b, bool subtract);
    static Numeric& multiply(Numeric& out, const Numeric& a, const Numeric& b);
    static Numeric& divide(Numeric& out, const Numeric& a, const Numeric& b);
    static Numeric& remainder(Numeric& out, const Numeric& a, const Numeric& b);
    static void addLow(Numeric& out, const limbs::Lanes& x, const limbs::Lanes& y, bool different,
                       std::int32_t fraction, bool negative);
    static void addUnaligned(Numeric& out, const Numeric& a, const Numeric& b, bool subtract);
    static void addLong(Numeric& out, const Numeric& a, const Numeric& b, bool subtract);
    static void divideLong(Numeric& out, const Numeric& a, const Numeric& b);
    template <class Operation, class... Flags>
    static Numeric made(Operation operation, const Numeric& a, const Numeric& b, Flags... flags) {
        Numeric result;
        operation(result, a, b, flags...);
        return result;
    }
    static Numeric powerOf(const Numeric& base, std::uint32_t exponent);
    static int compareMagnitudes(const Numeric& a, const Numeric& b) noexcept;
    template <class Char>
    static Numeric read(std::basic_string_view<Char> text, const Char** end);

    [[nodiscard]] std::size_t limbCount() const noexcept { return static_cast<std::size_t>(count_); }
    [[nodiscard]] bool negative() const noexcept { return sign_ != kPositive; }
    [[nodiscard]] inline bool equals(const Numeric& other) const noexcept;
    [[nodiscard]] std::uint64_t toInteger() const noexcept;
    template <class Float>
    void setFloating(Float value);
    template <class Float>
    [[nodiscard]] Float toFloating() const noexcept;
    [[nodiscard]] Numeric wholePart() const;
    /// Room for `count` limbs in a number that is zero; finish() must follow.
    Limb* reserve(std::size_t count);
    /// Makes what stands in the store the value: normalises it.
    void finish(std::size_t count, std::int64_t fraction, bool negative);
    /// Makes up to eight limbs the value; the place of the point is not checked.
    void store(const limbs::Lanes& lanes, std::int64_t fraction, bool negative);
    void storeUnusual(const limbs::Lanes& lanes, std::int64_t fraction, bool negative);
    void setInteger(std::uint64_t magnitude, bool negative) noexcept;
    [[noreturn]] static void refuse();
    static void checkShape(std::size_t count, std::int64_t fraction);
    void setShape(std::size_t count, std::int64_t fraction, bool negative) noexcept;
    inline void steal(Numeric& other) noexcept;
    void freeLimbs() noexcept;
    void release() noexcept {
        if (limbs_ != inline_) {
            freeLimbs();
        }
    }

    [[nodiscard]] bool isSmall() const noexcept { return limbCount() <= kInlineLimbs; }

    // The store holds at least four limbs; those of them that the value does not need are zero.
    std::uint32_t capacity_ = kInlineLimbs;
    std::int32_t count_ = 0;
    std::int32_t fraction_ = 0;
    std::uint8_t sign_ = kPositive;
    Limb* limbs_ = inline_;
    Limb inline_[kInlineLimbs] = {};
};

/// Writes the number as Numeric::toStream() does.
CORE_API wostream& operator<<(wostream& out, const Numeric& number);
/// Reads the number as Numeric::fromStream() does. Sets the fail bit, and leaves `number` as it was, when no
/// number stands there.
CORE_API wistream& operator>>(wistream& in, Numeric& number);

} // namespace core

#include <core/numbers/numeric_inline.h>
