// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/streams/unit_sink.h"

#include <core/dates/date.h>

#include <cstddef>
#include <cstdint>

/// The text forms of tokens: each function writes to `out` and returns the end.
namespace core::detail {

inline constexpr std::size_t kIntegerUnits = 24; // of which 20 are used
inline constexpr std::size_t kNumericUnits = 48; // longer ones are rare
inline constexpr std::size_t kDoubleUnits = 40;  // of which 24 are used; the rest is written over

/// May write over some of the kIntegerUnits behind the end, too.
wchar* format_integer(wchar* out, bool negative, std::uint64_t magnitude) noexcept;
/// `value` is finite.
wchar* format_double(wchar* out, double value) noexcept;
/// Date::kTextLength units. A date out of range has no text that could be read; it is written as the empty
/// one.
inline wchar* format_date(wchar* out, Date date) noexcept {
    return (date.isInRange() ? date : Date()).toString(out);
}
void write_string(UnitSink& sink, wstring_view text);
/// What stands between the quotes of a string, or a piece of it.
void write_characters(UnitSink& sink, wstring_view text);
/// The text before the first null unit, `length` units at the most.
[[nodiscard]] wstring_view terminated(const wchar* text, std::size_t length) noexcept;

} // namespace core::detail
