// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstdint>

namespace core {

/// What ends a line of a text.
enum class LineEnd : std::int32_t {
    none = 0,      ///< The text ends.
    lf = 1,        ///< U+000A.
    cr = 2,        ///< U+000D without U+000A behind it.
    crlf = 3,      ///< U+000D and U+000A, wherever the text is cut between them.
    line = 4,      ///< U+2028, where a reader takes it for an end.
    paragraph = 5, ///< U+2029, where a reader takes it for an end.
};

/// Returns the units of a line end; empty for LineEnd::none. Borrowed for ever.
[[nodiscard]] constexpr wstring_view line_end_text(LineEnd end) noexcept {
    constexpr wstring_view kTexts[] = {u"", u"\n", u"\r", u"\r\n", u"\u2028", u"\u2029"};
    return kTexts[static_cast<int>(end)];
}

} // namespace core
