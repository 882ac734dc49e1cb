// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

/// How a text that a locale prescribes is found in a text that a person has typed.
namespace core {

/// Whether `c` turns the direction of writing and shows nothing.
[[nodiscard]] constexpr bool is_direction_mark(wchar c) noexcept {
    return c == u'\u200E' || c == u'\u200F' || c == u'\u061C';
}

/// Whether the units look alike on a keyboard: the blanks, wide or narrow, that may break a line or not; the
/// apostrophes; the minus signs.
[[nodiscard]] constexpr bool is_same_unit(wchar a, wchar b) noexcept {
    const auto plain = [](wchar c) {
        switch (c) {
        case u'\u00A0':
        case u'\u202F':
            return u' ';
        case u'\u2019':
            return u'\'';
        case u'\u2212':
            return u'-';
        default:
            return c;
        }
    };
    return a == b || plain(a) == plain(b);
}

inline void skip_direction_marks(wstring_view& rest) noexcept {
    while (!rest.empty() && is_direction_mark(rest.front()))
        rest.remove_prefix(1);
}

/// Takes `text` off the front of `rest`. Direction marks may be missing or be there besides. False, with
/// `rest` as it was, when it does not stand there.
[[nodiscard]] inline bool take_text(wstring_view& rest, wstring_view text) noexcept {
    wstring_view left = rest;
    for (const wchar c : text) {
        if (is_direction_mark(c))
            continue;
        skip_direction_marks(left);
        if (left.empty() || !is_same_unit(left.front(), c))
            return false;
        left.remove_prefix(1);
    }
    if (!text.empty() && is_direction_mark(text.back()))
        skip_direction_marks(left);
    rest = left;
    return true;
}

} // namespace core
