// SPDX-License-Identifier: Apache-2.0
#include "core/strings/class_table.h"
#include "core/strings/folded_reader.h"

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

namespace {

// Goes on with a text whose next unit has no folding of one unit, from what its beginning came to.
NameFingerprint fingerprint_long(std::uint32_t hash, std::size_t length, wstring_view rest) noexcept {
    FoldedReader reader(rest);
    for (int c = reader.next(); c >= 0; c = reader.next(), ++length)
        hash = hash * 5 + static_cast<std::uint32_t>(c);
    return {static_cast<std::int32_t>(hash), static_cast<std::uint32_t>(length)};
}

} // namespace

NameFingerprint name_fingerprint(wstring_view name) noexcept {
    const FoldTable& fold = FoldTable::instance();
    constexpr wchar kLong = FoldTable::kLong;
    std::uint32_t hash = 0;
    std::size_t i = 0;
    // Four steps of h * 5 + c at once: the same sum, a quarter of the dependent multiplications.
    for (; i + 4 <= name.size(); i += 4) {
        const wchar a = fold[name[i]];
        const wchar b = fold[name[i + 1]];
        const wchar c = fold[name[i + 2]];
        const wchar d = fold[name[i + 3]];
        if (a == kLong || b == kLong || c == kLong || d == kLong)
            return fingerprint_long(hash, i, name.substr(i));
        hash = hash * 625 + a * 125U + b * 25U + c * 5U + d;
    }
    for (; i < name.size(); ++i) {
        const wchar folded = fold[name[i]];
        if (folded == kLong)
            return fingerprint_long(hash, i, name.substr(i));
        hash = hash * 5 + folded;
    }
    return {static_cast<std::int32_t>(hash), static_cast<std::uint32_t>(i)};
}

std::int32_t hash_nocase(wstring_view text) noexcept {
    return name_fingerprint(text).hash;
}

std::int32_t hash_nocase(std::string_view text) {
    return hash_nocase(from_utf8(text));
}

} // namespace core
