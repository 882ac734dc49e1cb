// SPDX-License-Identifier: Apache-2.0
#include "core/strings/class_table.h"
#include "core/strings/folding.h"

#include <core/runtime/utf8.h>
#include <core/strings/names.h>

#include <algorithm>

namespace core {

bool is_valid_name(wstring_view text) noexcept {
    const ClassTable& classes = ClassTable::instance();
    return !text.empty() && !classes.has(text.front(), ClassTable::kDigit) &&
           std::all_of(text.begin(), text.end(),
                       [&](wchar c) { return classes.has(c, ClassTable::kNamePart); });
}

bool is_valid_name(std::string_view text) {
    return is_valid_name(from_utf8(text));
}

std::int32_t hash_nocase(wstring_view text) noexcept {
    const FoldTable& fold = FoldTable::instance();
    constexpr wchar kLong = FoldTable::kLong;
    std::uint32_t hash = 0;
    std::size_t i = 0;
    // Four steps of h * 5 + c at once: the same sum, a quarter of the dependent multiplications.
    for (; i + 4 <= text.size(); i += 4) {
        const std::uint32_t a = fold[text[i]];
        const std::uint32_t b = fold[text[i + 1]];
        const std::uint32_t c = fold[text[i + 2]];
        const std::uint32_t d = fold[text[i + 3]];
        if (a == kLong || b == kLong || c == kLong || d == kLong)
            break;
        hash = hash * 625 + a * 125 + b * 25 + c * 5 + d;
    }
    for (; i < text.size() && fold[text[i]] != kLong; ++i)
        hash = hash * 5 + fold[text[i]];
    if (i < text.size()) {
        FoldedReader rest(text.substr(i));
        for (int c = rest.next(); c >= 0; c = rest.next())
            hash = hash * 5 + static_cast<std::uint32_t>(c);
    }
    return static_cast<std::int32_t>(hash);
}

std::int32_t hash_nocase(std::string_view text) {
    return hash_nocase(from_utf8(text));
}

} // namespace core
