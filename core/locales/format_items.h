// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <optional>
#include <vector>

namespace core {

/// One `name=value` of a format string.
struct FormatItem {
    wstring_view name;
    wstring value; ///< without quotes

    [[nodiscard]] bool is(wstring_view expected) const noexcept;
    /// The value as a text that a reader can find: white space at its front is
    /// refused, since readers skip it.
    [[nodiscard]] const wstring& text() const;
    /// Throws the CtorException for an item that a format cannot use.
    [[noreturn]] void refuse() const;
};

/// Takes the text between the apostrophes at the front of `rest`, in which two are one. None when it has no
/// end; `rest` is then what it was.
[[nodiscard]] std::optional<wstring> take_quoted(wstring_view& rest);

/// The items of `format`, in order. The names are views into `format`. CtorException when it is malformed, or
/// names an item twice.
[[nodiscard]] std::vector<FormatItem> format_items(wstring_view format);

} // namespace core
