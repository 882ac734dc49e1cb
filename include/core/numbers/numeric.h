// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/settings.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
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
    using Limb = std::uint32_t;
    static constexpr std::size_t kInlineLimbs = 4;
    static constexpr std::size_t kMaxLimbs = 0x3FFFFFFF;

    Numeric() noexcept = default;
    Numeric(const Numeric& other);
    Numeric(Numeric&& other) noexcept;
    template <NumericInteger T>
    Numeric(T value) noexcept;
    /// The shortest decimal that reads back as `value`. NumericException (overflow) for infinities and NaN.
    Numeric(double value);
    /// The same for the wider type.
    Numeric(long double value);
    Numeric(bool) = delete;
    ~Numeric() { release(); }

    Numeric& operator=(const Numeric& other);
    Numeric& operator=(Numeric&& other) noexcept;

    /// \name Arithmetic
    /// Addition, subtraction and multiplication are exact.
    /// @{
    Numeric& operator+=(const Numeric& other) { return add(*this, *this, other, false); }
    Numeric& operator-=(const Numeric& other) { return add(*this, *this, other, true); }
    Numeric& operator*=(const Numeric& other) { return multiply(*this, *this, other); }
    /// The quotient, cut off behind (fraction limbs of this − those of other) + limbs of other + 2 fraction
    /// limbs and rounded half up by the one limb that follows. NumericException (divideByZero).
    Numeric& operator/=(const Numeric& other) { return divide(*this, *this, other); }
    /// What the quotient, cut towards zero, leaves: it has the sign of the dividend. The quotient is that of
    /// operator/=, rounded behind its last place, so that a divisor that begins some 27 places behind the
    /// point may leave more than itself. NumericException (divideByZero).
    Numeric& operator%=(const Numeric& other) { return remainder(*this, *this, other); }

    friend Numeric operator+(const Numeric& a, const Numeric& b) { return made(add, a, b, false); }
    friend Numeric operator-(const Numeric& a, const Numeric& b) { return made(add, a, b, true); }
    friend Numeric operator*(const Numeric& a, const Numeric& b) { return made(multiply, a, b); }
    friend Numeric operator/(const Numeric& a, const Numeric& b) { return made(divide, a, b); }
    friend Numeric operator%(const Numeric& a, const Numeric& b) { return made(remainder, a, b); }

    [[nodiscard]] Numeric operator-() const;
    [[nodiscard]] Numeric abs() const;
    /// The largest whole number that is not above this one.
    [[nodiscard]] Numeric floor() const;
    /// This number to a power: exact when the exponent is a whole number of up to nine digits (a negative one
    /// divides 1 by the positive power), else computed in `double`. NumericException: divideByZero for zero
    /// to a negative power, negativePower for a negative number to a power computed in `double`, overflow for
    /// a result that is not finite or an exact one of more than 100 million digits.
    [[nodiscard]] Numeric pow(const Numeric& exponent) const;
    /// Rounded to `digits` fraction digits; −2 rounds to hundreds. `mode` decides exact halves only.
    [[nodiscard]] Numeric round(std::int32_t digits, NumericRoundMode mode) const;
    /// The same in the rounding mode of the process.
    [[nodiscard]] Numeric round(std::int32_t digits) const;
    /// @}

    /// \name Comparison
    /// @{
    /// −1, 0 or 1.
    [[nodiscard]] int compare(const Numeric& other) const noexcept;
    /// −1, 0 or 1.
    [[nodiscard]] int sign() const noexcept { return sign_ != kPositive ? -1 : count_ != 0 ? 1 : 0; }
    friend bool operator==(const Numeric& a, const Numeric& b) noexcept { return a.equals(b); }
    friend std::strong_ordering operator<=>(const Numeric& a, const Numeric& b) noexcept {
        return a.compare(b) <=> 0;
    }
    /// @}

    /// \name Conversion to built-in types
    /// To an integer: the fraction is cut off, and what does not fit wraps modulo 2^32 (types of up to four
    /// bytes) or 2^64. To a floating type: from the three highest limbs, infinite when out of range; `double`
    /// is correctly rounded, so that a number made from a `double` gives the same one back.
    /// @{
    template <NumericInteger T>
    explicit operator T() const noexcept {
        return static_cast<T>(toInteger());
    }
    explicit operator double() const noexcept;
    explicit operator float() const noexcept { return static_cast<float>(static_cast<double>(*this)); }
    explicit operator long double() const noexcept;
    /// @}

    /// \name Scaled integers
    /// The form of columns of numbers: whole multiples of 10^−`digits`, for up to `kMaxScale` digits.
    /// @{
    static constexpr std::uint32_t kMaxScale = 18;
    /// This number times 10^`digits`, where that is a whole number below 2^63 in magnitude.
    [[nodiscard]] std::optional<std::int64_t> scaled(std::uint32_t digits) const noexcept;
    /// `value` × 10^−`digits`.
    [[nodiscard]] static Numeric fromScaled(std::int64_t value, std::uint32_t digits);
    /// @}

    /// \name Decimal digits
    /// @{
    /// `precision` is the number of fraction digits, `length` that of all digits: (1, 0) for 0, (4, 1) for
    /// 120.5, (2, 2) for 0.05.
    void lengthAndPrecision(std::int64_t& length, std::int64_t& precision) const noexcept;
    /// Writes the `length` digits of lengthAndPrecision(), the last `precision` of which are the fraction,
    /// without sign and point, and returns their number. Nothing is written when it exceeds `capacity`.
    std::size_t digits(char* buffer, std::size_t capacity) const noexcept;
    std::size_t digits(wchar* buffer, std::size_t capacity) const noexcept;
    /// Writes exactly `length` digits of the number rounded to `precision` fraction digits, filled with zeros
    /// on both sides; the last `precision` are the fraction. False, with nothing written, when the whole part
    /// needs more than `length` − `precision` digits or `precision` exceeds `length`.
    bool digits(char* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const;
    bool digits(wchar* buffer, std::size_t length, std::size_t precision, NumericRoundMode mode) const;
    /// @}

    /// \name Text
    /// Written: "-" in front of a negative number, the whole part ("0" if there is none), and "." with the
    /// fraction if there is one; no exponent, no grouping. Read: blanks, tabs, line feeds and carriage
    /// returns, an optional sign, digits with at most one "." among, before or behind them.
    /// @{
    /// Reads as much of `text` as fits; `end`, when not null, receives the place where reading stopped.
    /// Without a digit the result is 0 and `end` the beginning of `text`.
    [[nodiscard]] static Numeric fromString(wstring_view text, const wchar** end = nullptr);
    [[nodiscard]] static Numeric fromString(std::string_view text, const char** end = nullptr);
    /// Reads a number and leaves the character behind it unread. False, with this number unchanged, when no
    /// digit was found; what looked like a number up to there is consumed.
    [[nodiscard]] bool fromStream(wistream& in);

    [[nodiscard]] wstring toString() const;
    /// Writes the text without a terminator and returns its length; the rest of the buffer may be
    /// overwritten. Nothing is written when the text exceeds `capacity`.
    std::size_t toString(wchar* buffer, std::size_t capacity) const noexcept;
    std::size_t toString(char* buffer, std::size_t capacity) const noexcept;
    /// A stream that does not take the text is marked bad.
    wostream& toStream(wostream& out) const;
    /// @}

    /// \name Representation
    /// @{
    [[nodiscard]] std::span<const Limb> limbs() const noexcept { return {limbs_, limbCount()}; }
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
    static Numeric parse(std::basic_string_view<Char> text, const Char** end);

    [[nodiscard]] std::size_t limbCount() const noexcept { return static_cast<std::size_t>(count_); }
    [[nodiscard]] bool negative() const noexcept { return sign_ != kPositive; }
    [[nodiscard]] bool equals(const Numeric& other) const noexcept;
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
    void steal(Numeric& other) noexcept;
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

template <NumericInteger T>
Numeric::Numeric(T value) noexcept {
    const auto bits = static_cast<std::uint64_t>(value);
    const bool negative = std::is_signed_v<T> && value < T{};
    setInteger(negative ? 0 - bits : bits, negative);
}

inline Numeric::Numeric(Numeric&& other) noexcept {
    steal(other);
}

/// Takes the value of `other` into a number without a heap store.
inline void Numeric::steal(Numeric& other) noexcept {
    count_ = other.count_;
    fraction_ = other.fraction_;
    sign_ = other.sign_;
    if (other.limbs_ == other.inline_) {
        std::memcpy(inline_, other.inline_, sizeof inline_);
        return;
    }
    capacity_ = other.capacity_;
    limbs_ = other.limbs_;
    other.capacity_ = kInlineLimbs;
    other.limbs_ = other.inline_;
    std::memset(other.inline_, 0, sizeof other.inline_);
    other.count_ = 0;
    other.fraction_ = 0;
    other.sign_ = kPositive;
}

inline Numeric& Numeric::operator=(Numeric&& other) noexcept {
    if (this != &other) {
        release();
        capacity_ = kInlineLimbs;
        limbs_ = inline_;
        steal(other);
    }
    return *this;
}

inline bool Numeric::equals(const Numeric& other) const noexcept {
    return count_ == other.count_ && fraction_ == other.fraction_ && sign_ == other.sign_ &&
           std::memcmp(limbs_, other.limbs_, limbCount() * sizeof(Limb)) == 0;
}

} // namespace core
