// SPDX-License-Identifier: Apache-2.0
#include <core/files/wildcard.h>

namespace core {
namespace {

/// The units of the character at `i`: a "?" must not take half of a pair.
std::size_t character_length(wstring_view text, std::size_t i) noexcept {
    const bool pair = (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    return pair ? 2 : 1;
}

} // namespace

bool matches_wildcard(wstring_view name, wstring_view pattern) noexcept {
    constexpr std::size_t kNone = wstring_view::npos;
    std::size_t n = 0;
    std::size_t p = 0;
    // Only the last "*" ever needs another try: what an earlier one took, a later one can take as well.
    std::size_t star = kNone;
    std::size_t resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && pattern[p] == u'?') {
            n += character_length(name, n);
            ++p;
        } else if (p < pattern.size() && pattern[p] == name[n]) {
            ++n;
            ++p;
        } else if (star != kNone) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

} // namespace core
