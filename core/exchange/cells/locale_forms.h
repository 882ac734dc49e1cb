// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/locales/date_format.h>
#include <core/locales/numeric_format.h>
#include <core/runtime/locale.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace core {

/// The forms in which people of one locale write numbers and dates, as the cells of a column have them, in
/// UTF-8: what is read, and how it was written, in one byte, so that the text can be made again.
class LocaleForms {
  public:
    /// How a number or a date is written, below 0x40.
    using Shape = std::uint8_t;

    /// Throws LocaleException for a locale without numbers or dates.
    explicit LocaleForms(const Locale& locale);

    /// Returns the number that a whole text spells; nothing for any other text.
    [[nodiscard]] std::optional<Numeric> number(std::string_view text);
    /// Returns whether the number that was read last has zeros in front, as codes have them.
    [[nodiscard]] bool isPadded() const noexcept;
    /// Returns the date that a whole text spells in a form of the locale, behind which a blank and plain
    /// hours and minutes, with or without seconds, may stand; nothing for any other text, the ISO forms among
    /// them.
    [[nodiscard]] std::optional<Date> date(std::string_view text);

    /// Returns how the number that was read last was written; nothing where no shape says that.
    [[nodiscard]] std::optional<Shape> shapeOf(const Numeric& number);
    /// Does the same for the date.
    [[nodiscard]] std::optional<Shape> shapeOf(Date date);
    /// Appends a number in a shape.
    void write(std::string& out, const Numeric& number, Shape shape);
    /// Appends a date in a shape.
    void write(std::string& out, Date date, Shape shape);

  private:
    [[nodiscard]] const NumericFormat& numbers(Shape shape);
    void compose(Date date, Shape shape);

    Locale locale_;
    NumericFormat number_;
    DateFormat date_;
    std::array<DateFormat, 2> times_; ///< to the minute and to the second
    std::vector<DateFormat> days_; ///< day and month in few digits, and in two; empty where words are written
    std::array<std::optional<NumericFormat>, 0x40> numbers_; ///< by shape, made when they are needed
    wstring units_;                                          ///< what was read last
    wstring again_;                                          ///< what a shape makes of it
    wstring time_;
};

} // namespace core
