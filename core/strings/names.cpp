// SPDX-License-Identifier: Apache-2.0
#include "core/strings/class_table.h"
#include "core/strings/fold_table.h"

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

NameFingerprint name_fingerprint(wstring_view name) noexcept {
    const FoldTable& fold = FoldTable::instance();
    std::uint32_t hash = 0;
    std::size_t i = 0;
    // Four steps of h * 5 + c at once: the same sum, a quarter of the dependent multiplications.
    for (; i + 4 <= name.size(); i += 4) {
        const wchar a = fold[name[i]];
        const wchar b = fold[name[i + 1]];
        const wchar c = fold[name[i + 2]];
        const wchar d = fold[name[i + 3]];
        constexpr wchar kLong = FoldTable::kLong;
        if ((a == kLong) | (b == kLong) | (c == kLong) | (d == kLong))
            break;
        hash = hash * 625 + a * 125U + b * 25U + c * 5U + d;
    }
    std::size_t length = i;
    FoldedReader rest(name.substr(i));
    for (int c = rest.next(); c >= 0; c = rest.next()) {
        hash = hash * 5 + static_cast<std::uint32_t>(c);
        ++length;
    }
    return {static_cast<std::int32_t>(hash), static_cast<std::uint32_t>(length)};
}

std::int32_t hash_nocase(wstring_view text) noexcept {
    return name_fingerprint(text).hash;
}

std::int32_t hash_nocase(std::string_view text) {
    return hash_nocase(from_utf8(text));
}

} // namespace core
