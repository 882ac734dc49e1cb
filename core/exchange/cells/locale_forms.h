// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/locale.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace core {

/// The forms in which people of one locale write numbers and dates, in UTF-8.
class LocaleForms {
  public:
    /// Asks the system's locale data.
    explicit LocaleForms(const Locale& locale);

    /// Returns a number of the locale in the plain form: without groups, a point before the fraction. Nothing
    /// for a text of another form; groups have three digits. The result is borrowed until the next call.
    [[nodiscard]] std::optional<std::string_view> plainNumber(std::string_view text);
    /// Returns the date that a whole text spells: day, month and year of four digits in the order of the
    /// locale, and hours and minutes, with or without seconds, behind a blank.
    [[nodiscard]] std::optional<Date> date(std::string_view text) const noexcept;

    /// Appends a number in the plain form as the locale writes it, in groups or without.
    void writeNumber(std::string& out, std::string_view plain, bool grouped) const;
    /// Appends a date: its day alone, or with `timeUnits` 2 or 3 hours and minutes, and seconds; day and
    /// month with two digits each, or with as few as there are.
    void writeDate(std::string& out, Date date, int timeUnits, bool padded) const;

  private:
    std::string point_;
    std::vector<std::string> groups_; ///< what may stand between groups
    std::array<char, 3> order_{'d', 'M', 'y'};
    char separator_ = '.';
    std::string plain_;
};

} // namespace core
