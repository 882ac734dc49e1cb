// SPDX-License-Identifier: Apache-2.0
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
    std::string bytes(text.size() * 3, '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, text.data(),
                       static_cast<std::int32_t>(text.size()), kReplacement, nullptr, &status);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

wstring from_utf8(std::string_view text) {
    if (text.empty())
        return {};
    wstring units(text.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length, text.data(),
                         static_cast<std::int32_t>(text.size()), kReplacement, nullptr, &status);
    units.resize(static_cast<std::size_t>(length));
    return units;
}

} // namespace core
