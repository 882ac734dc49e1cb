// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folding.h"

#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace core {
namespace {

/// How many units `a` and `b` have in common at their beginnings, out of `length`.
std::size_t common_prefix(const wchar* a, const wchar* b, std::size_t length) noexcept {
    constexpr std::size_t kStep = sizeof(std::uint64_t) / sizeof(wchar);
    std::size_t i = 0;
    for (; i + kStep <= length; i += kStep) {
        std::uint64_t x = 0;
        std::uint64_t y = 0;
        std::memcpy(&x, a + i, sizeof x);
        std::memcpy(&y, b + i, sizeof y);
        if (x != y)
            break;
    }
    while (i < length && a[i] == b[i])
        ++i;
    return i;
}

/// The order of two texts of which the shorter is the beginning of the longer.
int compare_lengths(std::size_t a, std::size_t b) noexcept {
    return a == b ? 0 : a < b ? -1 : 1;
}

} // namespace

wchar fold_case(wchar c) noexcept {
    return FoldTable::instance().simple(c);
}

wstring fold_case(wstring_view text) {
    wstring folded;
    folded.reserve(text.size());
    FoldedReader reader(text);
    for (int c = reader.next(); c >= 0; c = reader.next())
        folded.push_back(static_cast<wchar>(c));
    return folded;
}

std::string fold_case(std::string_view text) {
    return to_utf8(fold_case(from_utf8(text)));
}

int compare(wstring_view a, wstring_view b) noexcept {
    const std::size_t length = std::min(a.size(), b.size());
    const std::size_t i = common_prefix(a.data(), b.data(), length);
    return i < length ? a[i] - b[i] : compare_lengths(a.size(), b.size());
}

int compare(std::string_view a, std::string_view b) noexcept {
    return a.compare(b);
}

int compare_nocase(wstring_view a, wstring_view b) noexcept {
    const std::size_t length = std::min(a.size(), b.size());
    std::size_t i = common_prefix(a.data(), b.data(), length);
    if (i == length)
        return compare_lengths(a.size(), b.size());

    const FoldTable& fold = FoldTable::instance();
    const auto same = [&](std::size_t at) {
        const wchar folded = fold[a[at]];
        return folded == fold[b[at]] && folded != FoldTable::kLong;
    };
    while (i + 4 <= length && same(i) && same(i + 1) && same(i + 2) && same(i + 3))
        i += 4;
    while (i < length && same(i))
        ++i;
    if (i == length)
        return compare_lengths(a.size(), b.size());

    const wchar x = fold[a[i]];
    const wchar y = fold[b[i]];
    if (x != FoldTable::kLong && y != FoldTable::kLong)
        return x - y;
    a.remove_prefix(i);
    b.remove_prefix(i);
    return compare_foldings(a, b);
}

int compare_nocase(std::string_view a, std::string_view b) {
    const std::size_t length = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < length; ++i) {
        if (((a[i] | b[i]) & 0x80) != 0)
            return compare_nocase(from_utf8(a), from_utf8(b));
        if (const int difference = fold_case(a[i]) - fold_case(b[i]); difference != 0)
            return difference;
    }
    return compare_lengths(a.size(), b.size());
}

} // namespace core
