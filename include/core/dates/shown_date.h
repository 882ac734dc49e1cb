// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/shown.h>

#include <functional>

/// Dates on streams of bytes and as keys of the standard library's tables.
namespace core {

/// Returns the XML form, 2004-03-01T13:05:07, in every language the same. Throws std::bad_alloc.
[[nodiscard]] inline std::string to_utf8(Date date) {
    std::string text(Date::kXMLTextLength, '\0');
    date.toXMLString(text.data());
    return text;
}
/// Dates are written to streams.
template <>
inline constexpr bool kShown<Date> = true;

} // namespace core

/// The hash of dates.
template <>
struct std::hash<core::Date> {
    /// Returns the hash of a date.
    std::size_t operator()(core::Date date) const noexcept {
        return std::hash<std::uint64_t>()(date.ticks());
    }
};

/// The hash of spans.
template <>
struct std::hash<core::DateSpan> {
    /// Returns the hash of a span.
    std::size_t operator()(core::DateSpan span) const noexcept {
        return std::hash<std::int64_t>()(span.ticks());
    }
};
