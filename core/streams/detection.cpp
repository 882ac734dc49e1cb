// SPDX-License-Identifier: Apache-2.0
#include "core/streams/letter_detection.h"
#include "core/streams/unicode_detection.h"

#include <core/streams/detection.h>

#include <algorithm>
#include <optional>

namespace core {
namespace {

constexpr std::byte kEscape{0x1B}; // announces another set of characters in the seven bits of ISO 2022

std::optional<DetectedEncoding> by_mark(std::span<const std::byte> bytes) {
    // The mark of UTF-32LE begins with that of UTF-16LE.
    for (const char16_t* const name :
         {u"UTF-8", u"UTF-32LE", u"UTF-32BE", u"UTF-16LE", u"UTF-16BE", u"GB18030"}) {
        const auto encoding = Encoding::find(name);
        if (!encoding || encoding->mark().size() > bytes.size() ||
            !std::ranges::equal(encoding->mark(), bytes.first(encoding->mark().size())))
            continue;
        return DetectedEncoding{*encoding, 100, encoding->mark().size()};
    }
    return std::nullopt;
}

/// Without the ASCII in front, which tells nothing and which there may be much of, except for a little.
std::span<const std::byte> from_first_letter(std::span<const std::byte> bytes) {
    constexpr std::ptrdiff_t kKept = 16;
    const auto first = std::ranges::find_if(
        bytes, [](std::byte byte) { return byte >= std::byte{0x80} || byte == kEscape; });
    return bytes.subspan(
        static_cast<std::size_t>(std::max<std::ptrdiff_t>(first - bytes.begin() - kKept, 0)));
}

} // namespace

DetectedEncoding detect_encoding(std::span<const std::byte> bytes, bool isWhole) {
    if (const auto marked = by_mark(bytes))
        return *marked;
    const bool hasZeros = std::ranges::find(bytes, std::byte{0}) != bytes.end();
    if (!hasZeros) {
        const auto others = static_cast<std::size_t>(
            std::ranges::count_if(bytes, [](std::byte byte) { return byte >= std::byte{0x80}; }));
        const bool escapes = std::ranges::find(bytes, kEscape) != bytes.end();
        if (others != 0 && detail::is_utf8(bytes, isWhole))
            return {.certainty = others < 4 ? 95 : 99}; // letters of other pages look so by chance, too
        if (others != 0 || escapes) {
            const auto found = detail::detect_by_letters(from_first_letter(bytes), others);
            if (found && (others != 0 || found->encoding != Encoding(u"US-ASCII")))
                return *found;
        }
        if (others == 0)
            return {.certainty = 100, .isAscii = true};
    } else if (const auto found = detail::detect_wide_units(bytes, isWhole)) {
        return *found;
    }
    return {};
}

} // namespace core
