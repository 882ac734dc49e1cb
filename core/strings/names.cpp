// SPDX-License-Identifier: Apache-2.0
#include "core/strings/class_table.h"
#include "core/strings/folded_name.h"
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

// Hands the folding to `store` by words of four units, and tells whether that was all of it.
template <class Store>
NameFingerprint fold_name(wstring_view name, bool& stored, Store store) noexcept {
    const FoldTable& fold = FoldTable::instance();
    constexpr wchar kLong = FoldTable::kLong;
    stored = false;
    std::uint32_t hash = 0;
    std::size_t i = 0;
    // Four steps of h * 5 + c at once: the same sum, a quarter of the dependent multiplications.
    for (; i + 4 <= name.size(); i += 4) {
        const std::uint64_t a = fold[name[i]];
        const std::uint64_t b = fold[name[i + 1]];
        const std::uint64_t c = fold[name[i + 2]];
        const std::uint64_t d = fold[name[i + 3]];
        if (a == kLong || b == kLong || c == kLong || d == kLong)
            return fingerprint_long(hash, i, name.substr(i));
        store(i / 4, a | b << 16 | c << 32 | d << 48);
        hash = hash * 625 + static_cast<std::uint32_t>(a * 125 + b * 25 + c * 5 + d);
    }
    std::uint64_t rest = 0;
    for (std::size_t k = 0; i + k < name.size(); ++k) {
        const wchar folded = fold[name[i + k]];
        if (folded == kLong)
            return fingerprint_long(hash, i + k, name.substr(i + k));
        rest |= std::uint64_t{folded} << (16 * k);
        hash = hash * 5 + folded;
    }
    store(i / 4, rest);
    stored = true;
    return {static_cast<std::int32_t>(hash), static_cast<std::uint32_t>(name.size())};
}

} // namespace

NameFingerprint name_fingerprint(wstring_view name) noexcept {
    bool stored = false;
    return fold_name(name, stored, [](std::size_t, std::uint64_t) {});
}

FoldedName::FoldedName(wstring_view name) noexcept : name_(name) {
    if (name.size() < 4 * kWords) {
        fingerprint_ =
            fold_name(name, ready_, [this](std::size_t i, std::uint64_t word) { words_[i] = word; });
    } else {
        fingerprint_ = name_fingerprint(name);
        ready_ = false;
    }
}

bool FoldedName::isSameLong(const std::uint64_t* folding) const noexcept {
    FoldedReader reader(name_);
    for (std::size_t i = 0; i < fingerprint_.length; ++i) {
        if (reader.next() != static_cast<wchar>(folding[i / 4] >> (i % 4 * 16)))
            return false;
    }
    return true;
}

void FoldedName::appendTo(std::vector<std::uint64_t>& foldings) const {
    const std::size_t begin = foldings.size();
    foldings.resize(begin + (fingerprint_.length + 3) / 4);
    FoldedReader reader(name_);
    for (std::size_t i = 0; i < fingerprint_.length; ++i)
        foldings[begin + i / 4] |= static_cast<std::uint64_t>(reader.next()) << (i % 4 * 16);
}

std::int32_t hash_nocase(wstring_view text) noexcept {
    return name_fingerprint(text).hash;
}

std::int32_t hash_nocase(std::string_view text) {
    return hash_nocase(from_utf8(text));
}

} // namespace core
