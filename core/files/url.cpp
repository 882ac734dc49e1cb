// SPDX-License-Identifier: Apache-2.0
#include <core/files/url.h>
#include <core/strings/compare.h>

#include <algorithm>

namespace core {

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

} // namespace core
