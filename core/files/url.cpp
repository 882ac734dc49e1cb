// SPDX-License-Identifier: Apache-2.0
#include <core/files/url.h>
#include <core/strings/compare.h>

#include <algorithm>

namespace core {
namespace {

/// The units of the character at `i`: a "?" must not take half of a pair.
std::size_t character_length(wstring_view text, std::size_t i) noexcept {
    const bool pair = (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    return pair ? 2 : 1;
}

} // namespace

bool URL::hasOption(wstring_view name) const {
    return std::any_of(options.begin(), options.end(),
                       [name](const wstring& option) { return compare_nocase(option, name) == 0; });
}

URL split_url(wstring_view text) {
    const auto end = text.find(u"://");
    const auto isSchemeUnit = [](wchar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
    };
    if (end == wstring_view::npos || end == 0 || !std::all_of(text.begin(), text.begin() + end, isSchemeUnit))
        return {u"file", wstring(text), {}};
    return {wstring(text.substr(0, end)), wstring(text.substr(end + 3)), {}};
}

void split_options(URL& url) {
    const auto question = url.path.find(u'?');
    if (question == wstring::npos)
        return;
    wstring_view rest = wstring_view(url.path).substr(question + 1);
    for (;;) {
        const auto end = rest.find(u';');
        if (const wstring_view option = rest.substr(0, end); !option.empty())
            url.options.emplace_back(option);
        if (end == wstring_view::npos)
            break;
        rest.remove_prefix(end + 1);
    }
    url.path.resize(question);
}

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
