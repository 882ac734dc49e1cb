// SPDX-License-Identifier: Apache-2.0

/// Values, numbers, dates and ids in std::format, where the standard library has it, and in fmt, where its
/// header was included before this one. What stands behind the colon is what a text may have. This header may
/// be included again behind that of fmt, so that it does not matter what another header has included.

#if !defined(CORE_VALUES_FORMATTER)
#define CORE_VALUES_FORMATTER

#include <core/values/shown_value.h>

#include <string>
#include <string_view>
#include <version>

#if __has_include(<format>)
#include <format>
#endif

namespace core {

/// A type that can be formatted: one of those that can be written to streams, or a value.
template <class T>
concept Formatted = Shown<T> || std::derived_from<T, Value>;

} // namespace core

#if defined(__cpp_lib_format)
/// How std::format writes a type of the library.
template <core::Formatted T>
struct std::formatter<T, char> : std::formatter<std::string_view, char> {
    /// Writes the text of to_utf8().
    template <class Context>
    auto format(const T& shown, Context& context) const {
        return std::formatter<std::string_view, char>::format(to_utf8(shown), context);
    }
};
#endif

#endif

#if defined(FMT_VERSION) && !defined(CORE_VALUES_FMT_FORMATTER)
#define CORE_VALUES_FMT_FORMATTER
/// How fmt writes a type of the library.
template <core::Formatted T>
struct fmt::formatter<T, char> : fmt::formatter<std::string_view, char> {
    /// Writes the text of to_utf8().
    template <class Context>
    auto format(const T& shown, Context& context) const {
        return fmt::formatter<std::string_view, char>::format(to_utf8(shown), context);
    }
};
#endif
