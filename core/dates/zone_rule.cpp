// SPDX-License-Identifier: Apache-2.0
#include "core/dates/zone_rule.h"

#include "core/dates/unix_time.h"

#include <algorithm>

namespace core {
namespace {

/// Reads a rule from left to right. Once something does not fit, everything that follows fails, too.
class RuleReader {
  public:
    explicit RuleReader(std::string_view text) noexcept : rest_(text) {}

    [[nodiscard]] bool failed() const noexcept { return failed_; }
    [[nodiscard]] bool atEnd() const noexcept { return rest_.empty(); }

    [[nodiscard]] bool startsWith(char c) const noexcept { return !rest_.empty() && rest_.front() == c; }
    bool take(char c) noexcept {
        if (!startsWith(c))
            return false;
        rest_.remove_prefix(1);
        return true;
    }
    void expect(char c) noexcept {
        if (!take(c))
            failed_ = true;
    }

    /// At least three letters, or anything between angle brackets.
    void skipName() noexcept {
        const bool quoted = take('<');
        std::size_t length = 0;
        while (length < rest_.size() && isNameLetter(rest_[length], quoted))
            ++length;
        if (length < 3)
            failed_ = true;
        rest_.remove_prefix(length);
        if (quoted)
            expect('>');
    }

    int number(int least, int most) noexcept {
        int value = 0;
        std::size_t count = 0;
        for (; count < 3 && !rest_.empty() && isDigit(rest_.front()); ++count) {
            value = value * 10 + (rest_.front() - '0');
            rest_.remove_prefix(1);
        }
        if (count == 0 || value < least || value > most)
            failed_ = true;
        return value;
    }

    /// [+-]hh[:mm[:ss]] in seconds.
    int time(int mostHours) noexcept {
        const bool negative = take('-');
        if (!negative)
            take('+');
        int seconds = number(0, mostHours) * 3600;
        if (take(':')) {
            seconds += number(0, 59) * 60;
            if (take(':'))
                seconds += number(0, 59);
        }
        return negative ? -seconds : seconds;
    }

    /// Such a day with its time: M3.5.0/2, J60 or 59.
    ZoneRule::Day day() noexcept {
        using Form = ZoneRule::Day::Form;
        constexpr int kMostHours = 167;
        ZoneRule::Day result;
        if (take('M')) {
            result.month = number(1, 12);
            expect('.');
            result.week = number(1, 5);
            expect('.');
            result.day = number(0, 6);
        } else if (take('J')) {
            result.form = Form::withoutLeapDay;
            result.day = number(1, 365) - 1;
        } else {
            result.form = Form::withLeapDay;
            result.day = number(0, 365);
        }
        if (take('/'))
            result.time = time(kMostHours);
        return result;
    }

  private:
    static bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
    static bool isNameLetter(char c, bool quoted) noexcept {
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        return letter || (quoted && (isDigit(c) || c == '+' || c == '-'));
    }

    std::string_view rest_;
    bool failed_ = false;
};

std::int64_t day_of_year(const ZoneRule::Day& rule, int year) noexcept {
    const std::int64_t newYear = unix_day(year, 1, 1);
    if (rule.form == ZoneRule::Day::Form::withLeapDay)
        return newYear + rule.day;
    if (rule.form == ZoneRule::Day::Form::withoutLeapDay) {
        constexpr int kFirstOfMarch = 59;
        return newYear + rule.day + (rule.day >= kFirstOfMarch && calendar::is_leap_year(year) ? 1 : 0);
    }
    const int weekDayOfFirst = calendar::week_day(calendar::day_number(year, rule.month, 1)) % 7;
    int day = (rule.day - weekDayOfFirst + 7) % 7 + 7 * (rule.week - 1);
    if (day >= calendar::days_per_month(year, rule.month))
        day -= 7;
    return unix_day(year, rule.month, 1) + day;
}

std::int64_t moment_of(const ZoneRule::Day& rule, int year, std::int32_t offset) noexcept {
    return day_of_year(rule, year) * kSecondsPerDay + rule.time - offset;
}

} // namespace

std::optional<ZoneRule> ZoneRule::parse(std::string_view text) noexcept {
    constexpr int kMostHours = 24;
    RuleReader reader(text);
    ZoneRule rule;
    reader.skipName();
    rule.standard = -reader.time(kMostHours);
    if (!reader.atEnd() && !reader.failed()) {
        reader.skipName();
        Summer summer{rule.standard + 3600, {Day::Form::monthWeek, 3, 2}, {Day::Form::monthWeek, 11, 1}};
        if (!reader.atEnd() && !reader.startsWith(','))
            summer.offset = -reader.time(kMostHours);
        if (!reader.atEnd()) {
            reader.expect(',');
            summer.begin = reader.day();
            reader.expect(',');
            summer.end = reader.day();
        }
        rule.summer = summer;
    }
    return reader.failed() || !reader.atEnd() ? std::nullopt : std::optional(rule);
}

std::vector<TimeZone::Change> ZoneRule::changes(int first, int last) const {
    std::vector<TimeZone::Change> all;
    for (int year = first; summer && year <= last; ++year) {
        all.push_back({moment_of(summer->begin, year, standard), summer->offset});
        all.push_back({moment_of(summer->end, year, summer->offset), standard});
    }
    // Where summer ends and begins again at one moment, it lasts all year: its beginning must stay behind.
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& a, const auto& b) { return a.moment < b.moment; });
    return all;
}

TimeZone ZoneRule::zone() const {
    constexpr int kYear = 1970;
    return {standard, changes(kYear - 1, kYear + 401), TimeZone::Repeats::always,
            unix_day(kYear, 1, 1) * kSecondsPerDay};
}

TimeZone ZoneRule::zoneAfter(std::int32_t first, std::vector<TimeZone::Change> known) const {
    const std::int64_t last = known.back().moment;
    const int year = std::max(year_of(last), 2);
    std::int32_t offset = standard;
    std::size_t index = 0;
    const std::vector<TimeZone::Change> later = changes(year - 1, year + 403);
    for (; index < later.size() && later[index].moment <= last; ++index)
        offset = later[index].offset;
    known.back().offset = offset;
    known.insert(known.end(), later.begin() + static_cast<std::ptrdiff_t>(index), later.end());
    return {first, known, TimeZone::Repeats::afterCycle, unix_day(year + 2, 1, 1) * kSecondsPerDay};
}

} // namespace core
