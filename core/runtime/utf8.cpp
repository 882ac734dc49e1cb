// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/icu_length.h"

#include <core/runtime/utf8.h>

#include <unicode/ustring.h>

namespace core {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

} // namespace

std::string to_utf8(wstring_view text) {
    if (text.empty())
        return {};
    // A code unit takes three bytes at the most: a pair of units takes four.
    const std::int32_t units = icu_length(text.size());
    const std::int32_t capacity = icu_length(text.size() * 3);
    std::string bytes(static_cast<std::size_t>(capacity), '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), capacity, &length, text.data(), units, kReplacement, nullptr, &status);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

wstring from_utf8(std::string_view text) {
    if (text.empty())
        return {};
    const std::int32_t size = icu_length(text.size());
    wstring units(text.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), size, &length, text.data(), size, kReplacement, nullptr, &status);
    units.resize(static_cast<std::size_t>(length));
    return units;
}

} // namespace core
