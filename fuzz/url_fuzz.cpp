// SPDX-License-Identifier: Apache-2.0
// Any two texts as a base and a reference, as a folder and a name, as paths and as URLs.
#include <core/files.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace core;

/// Windows refuses some names, and takes "\\" for "/".
constexpr bool kTakesAnyName = std::filesystem::path::preferred_separator == '/';

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// What was resolved is resolved, seen from itself and from elsewhere.
void resolve(const wstring& base, const wstring& reference) {
    const wstring whole = resolve_url(base, reference); // perhaps with the dots of the base
    const wstring url = resolve_url(base, whole);
    require(resolve_url(url, url) == url);
    require(resolve_url(u"file:///elsewhere/x", url) == url);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), size);
    const std::string first = input.substr(0, end);
    const std::string second = input.substr(std::min(end + 1, size));
    const wstring reference = from_utf8(second);
    resolve(u"file://" + from_utf8(first), reference);
    resolve(file_url(first), escape_url(second));
    resolve(u"http://host/" + from_utf8(first), reference);
    (void)resolve_url(from_utf8(first), reference);
    for (const std::string& bytes : {first, second}) {
        require(unescape_url(escape_url(bytes)) == bytes);
        const wstring shown = shown_url(file_url(bytes));
        require(std::none_of(shown.begin(), shown.end(), [](wchar unit) { return unit < u' '; }));
        URL url = split_url(from_utf8(bytes));
        split_options(url);
        require(url.path.find(u'?') == wstring::npos);
    }
    const std::string name = to_utf8(reference);
    if (name.find('\0') == std::string::npos && first.find('\0') == std::string::npos) {
        const std::string folder = first.empty() || first.ends_with('/') ? first : first + '/';
        if (!first.empty() && kTakesAnyName)
            require(file_path(join_url(file_url(first), reference)) == folder + name);
        require(matches_wildcard(reference, u"*") && matches_wildcard(reference, u"*" + reference));
    }
    return 0;
}
