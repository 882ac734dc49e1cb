// SPDX-License-Identifier: Apache-2.0
// Dates, decimals and the names of types, which stand on nothing else of the bridge.
#include "bridges/com/value_forms.h"

#include "bridges/com/errors.h"

#include <core/strings/compare.h>
#include <core/strings/integer_text.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace core::com {
namespace {

/// A whole number of 96 bits. Not every processor has a type for it.
class Mantissa {
  public:
    Mantissa() = default;
    explicit Mantissa(const DECIMAL& decimal) noexcept
        : words_{static_cast<std::uint32_t>(decimal.Lo64), static_cast<std::uint32_t>(decimal.Lo64 >> 32U),
                 static_cast<std::uint32_t>(decimal.Hi32)} {}

    [[nodiscard]] bool isZero() const noexcept { return (words_[0] | words_[1] | words_[2]) == 0; }
    [[nodiscard]] std::uint64_t low() const noexcept { return std::uint64_t{words_[1]} << 32U | words_[0]; }
    [[nodiscard]] std::uint32_t high() const noexcept { return words_[2]; }
    /// Appends a decimal digit; false when it has no room.
    bool append(unsigned digit) noexcept {
        std::uint64_t carry = digit;
        for (std::uint32_t& word : words_) {
            carry += std::uint64_t{word} * 10;
            word = static_cast<std::uint32_t>(carry);
            carry >>= 32U;
        }
        return carry == 0;
    }
    /// Takes the last decimal digit off.
    unsigned takeLast() noexcept {
        std::uint64_t rest = 0;
        for (auto word = words_.rbegin(); word != words_.rend(); ++word) {
            rest = rest << 32U | *word;
            *word = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        return static_cast<unsigned>(rest);
    }

  private:
    std::array<std::uint32_t, 3> words_{}; // the lowest comes first
};

struct TypeName {
    VARTYPE type;
    const wchar* name;
};
constexpr TypeName kTypeNames[] = {
    {VT_EMPTY, u"VT_EMPTY"},     {VT_NULL, u"VT_NULL"},
    {VT_I2, u"VT_I2"},           {VT_I4, u"VT_I4"},
    {VT_R4, u"VT_R4"},           {VT_R8, u"VT_R8"},
    {VT_CY, u"VT_CY"},           {VT_DATE, u"VT_DATE"},
    {VT_BSTR, u"VT_BSTR"},       {VT_DISPATCH, u"VT_DISPATCH"},
    {VT_ERROR, u"VT_ERROR"},     {VT_BOOL, u"VT_BOOL"},
    {VT_VARIANT, u"VT_VARIANT"}, {VT_UNKNOWN, u"VT_UNKNOWN"},
    {VT_DECIMAL, u"VT_DECIMAL"}, {VT_I1, u"VT_I1"},
    {VT_UI1, u"VT_UI1"},         {VT_UI2, u"VT_UI2"},
    {VT_UI4, u"VT_UI4"},         {VT_I8, u"VT_I8"},
    {VT_UI8, u"VT_UI8"},         {VT_INT, u"VT_INT"},
    {VT_UINT, u"VT_UINT"},       {VT_RECORD, u"VT_RECORD"},
};

} // namespace

void refuse(const Value& value, VARTYPE type) {
    throw_error<COMException>(messages::kNotExact, {value.presentation(), type_name(type)});
}

std::size_t size_of_type(VARTYPE type) noexcept {
    if ((type & VT_ARRAY) != 0)
        return sizeof(void*);
    switch (type & VT_TYPEMASK) {
    case VT_I1:
    case VT_UI1:
        return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
        return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
        return 8;
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return sizeof(void*);
    case VT_VARIANT:
        return sizeof(VARIANT);
    case VT_DECIMAL:
        return sizeof(DECIMAL);
    default:
        return 0;
    }
}

bool to_decimal(const Numeric& number, DECIMAL& out) {
    std::int64_t length = 0;
    std::int64_t places = 0;
    number.lengthAndPrecision(length, places);
    constexpr std::size_t kDigits = 29; // 2^96 has as many
    constexpr std::int64_t kPlaces = 28;
    char digits[kDigits];
    const std::size_t count = number.digits(digits, kDigits);
    if (places > kPlaces || count > kDigits)
        return false;
    Mantissa mantissa;
    for (std::size_t i = 0; i < count; ++i)
        if (!mantissa.append(static_cast<unsigned>(digits[i] - '0')))
            return false;
    out = DECIMAL{};
    out.scale = static_cast<BYTE>(places);
    out.sign = number.sign() < 0 ? DECIMAL_NEG : 0;
    out.Lo64 = mantissa.low();
    out.Hi32 = mantissa.high();
    return true;
}

Numeric from_decimal(const DECIMAL& decimal) {
    constexpr unsigned kMostPlaces = 28;
    if (decimal.scale > kMostPlaces || (decimal.sign & ~DECIMAL_NEG) != 0)
        throw_error<COMException>(messages::kBadType, {type_name(VT_DECIMAL)});
    Mantissa mantissa(decimal);
    char text[kMostPlaces + 34];
    char* begin = text + sizeof text;
    for (unsigned place = 0; !mantissa.isZero() || place <= decimal.scale; ++place) {
        if (place == decimal.scale && place != 0)
            *--begin = '.';
        *--begin = static_cast<char>('0' + mantissa.takeLast());
    }
    if (decimal.sign != 0)
        *--begin = '-';
    return *Numeric::parse(std::string_view(begin, text + sizeof text));
}

constexpr std::int64_t kSecondsPerDay = 86'400;
/// The day 0 of automation, 1899-12-30, and the first one that it has, 0100-01-01, as days of ours.
constexpr std::int64_t kDayZero = 693'593;
constexpr std::int64_t kFirstDay = kDayZero - 657'434;

DATE to_com_date(Date date) {
    const auto day = static_cast<std::int64_t>(date.ticks() / static_cast<std::uint64_t>(kTicksPerDay));
    if (day < kFirstDay || !date.isInRange()) // the system would make 1999 of the year 99
        refuse(Value(date), VT_DATE);
    const auto ticks = static_cast<std::int64_t>(date.ticks() % static_cast<std::uint64_t>(kTicksPerDay));
    const double time = static_cast<double>(ticks / kTicksPerSecond) / static_cast<double>(kSecondsPerDay);
    const auto days = static_cast<double>(day - kDayZero);
    return days < 0 ? days - time : days + time;
}

Date from_com_date(DATE date) {
    const double days = std::trunc(date);
    const double last =
        static_cast<double>(static_cast<std::int64_t>(Date::kLimit / kTicksPerDay) - kDayZero);
    if (!(days >= static_cast<double>(kFirstDay - kDayZero) && days < last))
        throw_error<COMException>(
            messages::kNotExact,
            {std::isfinite(date) ? shortest(date).toString() : wstring(u"NaN"), u"Date"});
    // The fraction of a DATE far from its day 0 is right to some 10 microseconds.
    const std::int64_t ticks = std::llround(std::fabs(date - days) * static_cast<double>(kTicksPerDay));
    const std::int64_t seconds = ticks / kTicksPerSecond;
    const auto day = static_cast<std::int64_t>(days) + kDayZero;
    return Date(static_cast<std::uint64_t>(day * kTicksPerDay + seconds * kTicksPerSecond));
}

wstring type_name(VARTYPE type) {
    wstring name;
    for (const TypeName& known : kTypeNames) {
        if (known.type == (type & VT_TYPEMASK))
            name = known.name;
    }
    if (name.empty())
        name = u"VT_" + string_intto(static_cast<int>(type & VT_TYPEMASK));
    if ((type & VT_ARRAY) != 0)
        name += u" | VT_ARRAY";
    if ((type & VT_BYREF) != 0)
        name += u" | VT_BYREF";
    return name;
}

VARTYPE type_of_name(wstring_view name) noexcept {
    for (const TypeName& known : kTypeNames) {
        const wstring_view full = known.name;
        if (compare_nocase(full, name) == 0 || compare_nocase(full.substr(3), name) == 0)
            return known.type;
    }
    return VT_ILLEGAL;
}

} // namespace core::com
