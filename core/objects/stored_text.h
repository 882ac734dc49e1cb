// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/locale_values.h>

/// How a text that may be in several languages is stored as an element of a list: what holds for all
/// languages as a string, and at the end of the list the languages, where there are any. Lists of plain texts
/// are what they were before there were languages.
namespace core {

inline void put_plain_text(ListOutStream& out, const LocalWString& text) {
    const wstring* const plain = text.find(Locale());
    out.put(plain != nullptr ? *plain : wstring());
}
inline void put_languages(ListOutStream& out, const LocalWString& text) {
    if (!text.isPlain())
        put(out, text);
}

[[nodiscard]] inline LocalWString get_plain_text(ListInStream& in) {
    wstring text;
    in.get(text);
    return text;
}
inline void get_languages(ListInStream& in, LocalWString& text) {
    if (in.getComma())
        text = get_local_wstring(in);
}

} // namespace core
