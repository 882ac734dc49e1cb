// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"

#include <core/files/disk_file.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <initializer_list>
#include <optional>

namespace core {
namespace {

/// A URL or a part of one, divided. The parts are borrowed from the text; a missing one and an empty one
/// differ.
struct Reference {
    std::optional<wstring_view> scheme;
    std::optional<wstring_view> authority;
    wstring_view path;
    std::optional<wstring_view> query;
    std::optional<wstring_view> fragment;
};

bool has_authority(wstring_view scheme) noexcept {
    const std::initializer_list<wstring_view> without = {u"file", u"mem", u"shm"};
    return std::none_of(without.begin(), without.end(),
                        [scheme](wstring_view name) { return compare_nocase(scheme, name) == 0; });
}

bool is_scheme(wstring_view text) noexcept {
    const auto isLetter = [](wchar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [&](wchar c) {
        return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.';
    });
}

/// Cuts `mark` and what stands behind it off the end of the text, and returns what stands behind it.
std::optional<wstring_view> cut_off(wstring_view& text, wchar mark) noexcept {
    const auto place = text.find(mark);
    if (place == wstring_view::npos)
        return std::nullopt;
    const wstring_view rest = text.substr(place + 1);
    text = text.substr(0, place);
    return rest;
}

/// `inScheme` is the scheme of a reference that names none.
Reference divide(wstring_view text, wstring_view inScheme) {
    Reference parts;
    parts.fragment = cut_off(text, u'#');
    parts.query = cut_off(text, u'?');
    if (const auto colon = text.find(u':'); colon != wstring_view::npos && is_scheme(text.substr(0, colon))) {
        parts.scheme = text.substr(0, colon);
        text.remove_prefix(colon + 1);
    }
    if (text.starts_with(u"//")) {
        text.remove_prefix(2);
        const std::size_t length =
            has_authority(parts.scheme.value_or(inScheme)) ? std::min(text.find(u'/'), text.size()) : 0;
        parts.authority = text.substr(0, length);
        text.remove_prefix(length);
    }
    parts.path = text;
    return parts;
}

/// A path without "." and "..". In a relative one the ".." that lead out of it stay, and it stays relative.
wstring without_dots(wstring_view path) {
    const bool isAbsolute = path.starts_with(u'/');
    const bool isRelative = !isAbsolute && !path.empty();
    if (isAbsolute)
        path.remove_prefix(1);
    std::vector<wstring_view> segments;
    for (bool more = !path.empty(); more;) {
        const auto slash = path.find(u'/');
        const wstring_view segment = path.substr(0, slash);
        more = slash != wstring_view::npos;
        path.remove_prefix(more ? slash + 1 : path.size());
        if (segment == u"..") {
            if (!segments.empty() && segments.back() != u"..")
                segments.pop_back();
            else if (!isAbsolute)
                segments.push_back(segment);
        } else if (segment != u".") {
            segments.push_back(segment);
        }
        if (!more && (segment == u"." || segment == u".."))
            segments.emplace_back(); // it names a folder, which ends with "/"
    }
    wstring result(isAbsolute ? u"/" : u"");
    for (std::size_t i = 0; i < segments.size(); ++i)
        result.append(i == 0 ? u"" : u"/").append(segments[i]);
    if (isRelative && (result.empty() || result.front() == u'/'))
        result.insert(0, u"./");
    return result;
}

/// The path of a reference that stands beside the last part of the base's path.
wstring beside(const Reference& base, wstring_view path) {
    const bool isBare = base.authority && base.path.empty() && has_authority(base.scheme.value_or(u""));
    wstring merged(isBare ? u"/" : base.path.substr(0, base.path.rfind(u'/') + 1));
    return merged.append(path);
}

wstring composed(const Reference& parts) {
    wstring url;
    if (parts.scheme)
        url.append(*parts.scheme).append(u":");
    if (parts.authority)
        url.append(u"//").append(*parts.authority);
    url.append(parts.path);
    if (parts.query)
        url.append(u"?").append(*parts.query);
    if (parts.fragment)
        url.append(u"#").append(*parts.fragment);
    return url;
}

} // namespace

wstring resolve_url(wstring_view base, wstring_view reference) {
    if (begins_with_drive(reference))
        return file_url(to_utf8(reference));
    const bool isPath = base.find(u"://") == wstring_view::npos;
    const wstring whole = isPath ? file_url(to_utf8(base)) : wstring(base);
    const Reference from = divide(whole, {});
    Reference to = divide(reference, from.scheme.value_or(u""));
    wstring path;
    if (to.scheme || to.authority || to.path.starts_with(u'/')) {
        path = without_dots(to.path);
    } else if (to.path.empty()) {
        path = from.path;
        if (!to.query)
            to.query = from.query;
    } else {
        path = without_dots(beside(from, to.path));
    }
    if (!to.scheme) {
        if (!to.authority)
            to.authority = from.authority;
        to.scheme = from.scheme;
    }
    to.path = path;
    return composed(to);
}

wstring join_url(wstring_view folder, wstring_view name) {
    wstring url(folder.empty() ? u"." : folder);
    if (!url.ends_with(u'/'))
        url.push_back(u'/');
    return url.append(is_file_url(folder) ? escape_url(to_utf8(name)) : wstring(name));
}

} // namespace core
