// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/compare.h>

#include <algorithm>

/// LIKE in the plainest way: the pattern's text is walked again for every text, one case a line. Exponential
/// in the number of "%", so for short patterns only.
struct LikeModel {
    core::wstring_view pattern;
    core::wchar escape;
    bool nocase;

    bool same(core::wchar a, core::wchar b) const {
        return nocase ? core::fold_case(a) == core::fold_case(b) : a == b;
    }

    bool matches(core::wstring_view text, std::size_t p = 0) const {
        if (p == pattern.size())
            return text.empty();
        const core::wchar c = pattern[p];
        if (escape != 0 && c == escape) {
            const std::size_t literal = p + 1 < pattern.size() ? p + 1 : p;
            return !text.empty() && same(text[0], pattern[literal]) && matches(text.substr(1), literal + 1);
        }
        if (c == u'%')
            return matches(text, p + 1) || (!text.empty() && matches(text.substr(1), p));
        if (text.empty())
            return false;
        if (c == u'_')
            return matches(text.substr(1), p + 1);
        if (c == u'[')
            return matchesSet(text, p + 1);
        return same(text[0], c) && matches(text.substr(1), p + 1);
    }

    bool matchesSet(core::wstring_view text, std::size_t p) const {
        const auto at = [&](std::size_t i) { return i < pattern.size() ? pattern[i] : u']'; };
        const bool negated = p < pattern.size() && at(p) == u'^';
        bool member = false;
        for (p += negated; at(p) != u']'; ++p) {
            int first = at(p);
            int last = first;
            if (at(p + 1) == u'-' && at(p + 2) != u']') {
                last = at(p + 2);
                p += 2;
            }
            for (int c = std::min(first, last); c <= std::max(first, last); ++c)
                member |= same(text[0], static_cast<core::wchar>(c));
        }
        return member != negated && matches(text.substr(1), std::min(p + 1, pattern.size()));
    }
};
