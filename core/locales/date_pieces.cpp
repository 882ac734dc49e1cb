// SPDX-License-Identifier: Apache-2.0
// What the letters of a pattern mean: a date as pieces of text, and back.
#include "core/locales/date_layout.h"
#include "core/locales/text_match.h"

#include <core/strings/compare.h>

#include <algorithm>
#include <array>

namespace core {
namespace {

/// The parts of a date, split once for all pieces.
struct Parts {
    explicit Parts(Date of) noexcept : date(of) { of.split(year, month, day, hour, minute, second); }

    Date date;
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The year of the week's Thursday.
int week_year(Date date) noexcept {
    return date.isInRange() ? (date.begOfWeek(1) + DateSpan(3 * kTicksPerDay)).getYear() : 0;
}

int power_of_ten(std::size_t exponent) noexcept {
    int power = 1;
    for (; exponent != 0; --exponent)
        power *= 10;
    return power;
}

/// The number that a letter stands for; of a name, its index.
int value_of(const DatePiece& piece, const Parts& parts) noexcept {
    const bool named = !piece.names.empty();
    switch (piece.letter) {
    case u'y':
    case u'u':
        return piece.width == 2 ? parts.year % 100 : parts.year;
    case u'Y':
        return week_year(parts.date);
    case u'M':
    case u'L':
        return named ? parts.month - 1 : parts.month;
    case u'd':
        return parts.day;
    case u'H':
        return parts.hour;
    case u'k':
        return (parts.hour + 23) % 24 + 1;
    case u'h':
        return (parts.hour + 11) % 12 + 1;
    case u'K':
        return parts.hour % 12;
    case u'm':
        return parts.minute;
    case u's':
        return parts.second;
    case u'S': // a date has four digits of a second
        return static_cast<int>(parts.date.ticks() % kTicksPerSecond) / power_of_ten(4 - piece.width);
    case u'E':
    case u'c':
        return parts.date.getWeekDay() % 7;
    case u'Q':
    case u'q':
        return parts.date.getQuarter() - (named ? 1 : 0);
    case u'w':
        return parts.date.getYearWeek();
    case u'D':
        return parts.date.getYearDay();
    case u'a':
        return parts.hour / 12;
    case u'B':
        return parts.hour;
    default: // the era: there is only the common one
        return 1;
    }
}

/// The digits that are written at least.
std::size_t least_digits(const DatePiece& piece) noexcept {
    const bool isYear = piece.letter == u'y' || piece.letter == u'u' || piece.letter == u'Y';
    return isYear && piece.width == 1 ? 4 : piece.width;
}

/// The digits that are read at most.
std::size_t most_digits(const DatePiece& piece) noexcept {
    const std::size_t least = least_digits(piece);
    return piece.letter == u'D' ? 3 : piece.letter == u'S' || least > 2 ? least : 2;
}

void append_number(wstring& text, const DigitUnits& units, int number, std::size_t least) {
    wchar reversed[8];
    std::size_t count = 0;
    for (; number != 0 || count < least; number /= 10)
        reversed[count++] = static_cast<wchar>(number % 10);
    wchar shown[16];
    wchar* out = shown;
    while (count != 0)
        out = units.put(out, reversed[--count]);
    text.append(shown, static_cast<std::size_t>(out - shown));
}

/// Takes digits off the front of `rest`; -1 when there are fewer than `least`.
int take_number(wstring_view& rest, const DigitUnits& units, std::size_t least, std::size_t most) noexcept {
    skip_direction_marks(rest);
    int number = 0;
    std::size_t count = 0;
    for (; count < most; ++count) {
        const int digit = units.take(rest);
        if (digit < 0)
            break;
        number = number * 10 + digit;
    }
    return count >= least ? number : -1;
}

/// Takes the longest of the names that stands at the front of `rest`, in any case; -1 when none does.
int take_name(wstring_view& rest, const std::vector<wstring>& names) {
    skip_direction_marks(rest);
    std::size_t length = 0;
    int found = -1;
    for (std::size_t i = 0; i < names.size(); ++i) {
        wstring_view left = rest;
        const wstring_view name = names[i];
        if (!take_text(left, name)) {
            if (compare_nocase(rest.substr(0, name.size()), name) != 0)
                continue;
            left = rest.substr(std::min(name.size(), rest.size()));
        }
        if (rest.size() - left.size() > length) {
            length = rest.size() - left.size();
            found = static_cast<int>(i);
        }
    }
    rest.remove_prefix(length);
    return found;
}

/// Whether two months or quarters have the name, as "J" is June and July.
bool is_ambiguous(const DatePiece& piece, int index) {
    if (wstring_view(u"MLQq").find(piece.letter) == wstring_view::npos || piece.names.empty())
        return false;
    const wstring& name = piece.names[static_cast<std::size_t>(index)];
    return std::count(piece.names.begin(), piece.names.end(), name) > 1;
}

/// What was read, by the letters of the pattern.
class Reading {
  public:
    explicit Reading(const std::vector<DatePiece>& pieces) : pieces_(pieces) {}

    bool take(wstring_view& rest, const DigitUnits& units) {
        if (pieces_.size() > values_.size())
            return false;
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            const DatePiece& piece = pieces_[i];
            if (piece.letter == 0) {
                if (!take_text(rest, piece.text))
                    return false;
            } else if (!takePart(rest, units, i)) {
                return false;
            }
        }
        return true;
    }

    /// The date that was read; none when there is no such date, or when a part of the text contradicts it.
    [[nodiscard]] std::optional<Date> date() const {
        const std::optional<Date> day = this->day();
        const int hour = this->hour();
        const int minute = number(u"m").value_or(0);
        const int second = number(u"s").value_or(0);
        if (!day || hour < 0 || hour > 23 || minute > 59 || second > 59)
            return std::nullopt;
        const std::int64_t seconds = (hour * 60 + minute) * 60 + second;
        std::int64_t ticks = seconds * kTicksPerSecond;
        if (const DatePiece* const fraction = piece(u"S"))
            ticks += std::int64_t{*number(u"S")} * power_of_ten(4 - fraction->width);
        const Date made = *day + DateSpan(ticks);
        return agrees(made) ? std::optional(made) : std::nullopt;
    }

  private:
    bool takePart(wstring_view& rest, const DigitUnits& units, std::size_t i) {
        const DatePiece& piece = pieces_[i];
        if (!piece.names.empty()) {
            values_[i] = take_name(rest, piece.names);
            return values_[i] >= 0 && !is_ambiguous(piece, values_[i]);
        }
        const std::size_t most = most_digits(piece);
        const bool all = piece.exact || most > 3 || piece.letter == u'S' || piece.letter == u'y';
        values_[i] = take_number(rest, units, all ? most : 1, most);
        return values_[i] >= 0;
    }

    /// The first piece of one of these letters.
    [[nodiscard]] const DatePiece* piece(wstring_view letters) const noexcept {
        for (const DatePiece& each : pieces_) {
            if (each.letter != 0 && letters.find(each.letter) != wstring_view::npos)
                return &each;
        }
        return nullptr;
    }
    [[nodiscard]] std::optional<int> number(wstring_view letters) const noexcept {
        const DatePiece* const found = piece(letters);
        if (found == nullptr)
            return std::nullopt;
        return values_[static_cast<std::size_t>(found - pieces_.data())];
    }

    /// A year of two digits lies between 1969 and 2068, as the system's own reader has it.
    [[nodiscard]] int year() const noexcept {
        const int read = number(u"yu").value_or(number(u"Y").value_or(1));
        const DatePiece* const found = piece(u"yu");
        if (found == nullptr || found->width != 2)
            return read;
        return read + (read < 69 ? 2000 : 1900);
    }

    [[nodiscard]] std::optional<Date> day() const noexcept {
        const int ofMonth = number(u"d").value_or(1);
        if (const auto month = number(u"ML"))
            return made(*month + (piece(u"ML")->names.empty() ? 0 : 1), ofMonth);
        if (const auto ofYear = number(u"D"))
            return later(made(1, 1), *ofYear - 1);
        if (const auto week = number(u"w")) {
            // The fourth of January lies in the first week.
            const std::optional<Date> first = made(1, 4);
            const int weekDay = (number(u"Ec").value_or(1) + 6) % 7;
            return first ? later(first->begOfWeek(1), (*week - 1) * 7 + weekDay) : first;
        }
        if (const auto quarter = number(u"Qq"))
            return made((*quarter - (piece(u"Qq")->names.empty() ? 1 : 0)) * 3 + 1, ofMonth);
        return made(1, ofMonth);
    }
    [[nodiscard]] std::optional<Date> made(int month, int day) const noexcept {
        return Date::isMoment(year(), month, day) ? std::optional(Date(year(), month, day)) : std::nullopt;
    }
    [[nodiscard]] static std::optional<Date> later(std::optional<Date> date, int days) noexcept {
        return date ? std::optional(*date + DateSpan(days * kTicksPerDay)) : date;
    }

    [[nodiscard]] int hour() const noexcept {
        const DatePiece* const found = piece(u"HhKk");
        if (found == nullptr)
            return number(u"a").value_or(0) * 12;
        const int read = *number(u"HhKk");
        if (found->letter == u'H')
            return read;
        if (found->letter == u'k')
            return read % 24;
        if (const auto half = number(u"a"))
            return read % 12 + 12 * *half;
        const DatePiece* const period = piece(u"B");
        const auto at = static_cast<std::size_t>(read % 12);
        const bool isEarly =
            period == nullptr || period->names[at] == period->names[static_cast<std::size_t>(*number(u"B"))];
        return static_cast<int>(at) + (isEarly ? 0 : 12);
    }

    [[nodiscard]] bool agrees(Date date) const noexcept {
        const Parts parts(date);
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            const DatePiece& piece = pieces_[i];
            if (piece.letter == 0)
                continue;
            const int expected = value_of(piece, parts);
            const bool same = piece.names.empty() ? values_[i] == expected
                                                  : piece.names[static_cast<std::size_t>(values_[i])] ==
                                                        piece.names[static_cast<std::size_t>(expected)];
            if (!same)
                return false;
        }
        return true;
    }

    const std::vector<DatePiece>& pieces_;
    std::array<int, 64> values_{};
};

} // namespace

void DatePieces::write(Date date, wstring& text) const {
    const Parts parts(date);
    for (const DatePiece& piece : pieces) {
        if (piece.letter == 0) {
            text += piece.text;
            continue;
        }
        const int value = value_of(piece, parts);
        if (piece.names.empty())
            append_number(text, digits, value, least_digits(piece));
        else if (date.isInRange())
            text += piece.names[static_cast<std::size_t>(value)];
    }
}

bool DatePieces::read(wstring_view& rest, Date& date) const {
    wstring_view left = rest;
    Reading reading(pieces);
    if (pieces.empty() || !reading.take(left, digits))
        return false;
    const std::optional<Date> read = reading.date();
    if (!read)
        return false;
    date = *read;
    rest = left;
    return true;
}

} // namespace core
