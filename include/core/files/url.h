// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace core {

/// The parts of a URL: scheme "://" path ["?" option {";" option}]. A text without scheme is a path on disk.
/// A scheme decides whether its URLs have options; in the others "?" is a part of the path.
struct URL {
    wstring scheme;               ///< What stands before "://", "file" where nothing does.
    wstring path;                 ///< What stands behind "://", without the options.
    std::vector<wstring> options; ///< The options in the order of the text; none is empty.

    /// Returns whether the URL has this option, without regard to case.
    [[nodiscard]] CORE_API bool hasOption(wstring_view name) const;
};

/// Divides a text into scheme and path. Options stay in the path; split_options() moves them.
[[nodiscard]] CORE_API URL split_url(wstring_view text);
/// Moves what stands behind the first "?" of the path into the options.
CORE_API void split_options(URL& url);

/// Returns bytes, as a rule of a path in UTF-8, as they stand in a URL: every byte that is not plain there is
/// escaped ("%20"); "/" is plain.
[[nodiscard]] CORE_API wstring escape_url(std::string_view bytes);
/// Returns the bytes that stand behind a part of a URL, its escapes resolved. A "%" without two digits behind
/// it stands for itself.
[[nodiscard]] CORE_API std::string unescape_url(wstring_view text);

/// Returns the URL that `reference` means in a document with the URL `base`, by the rules of RFC 3986. The
/// reference is a whole URL or a part of one ("../b", "/c", "?x"), escaped as URLs are; "." and ".." are
/// resolved as text. A base without scheme is a path on disk, and the result a URL all the same. "file",
/// "mem" and "shm" have no authority: behind "://" stands the path, and a relative one stays relative.
[[nodiscard]] CORE_API wstring resolve_url(wstring_view base, wstring_view reference);
/// Returns the URL, or the path, of `name` in the folder with the URL or path `folder`; an empty folder is
/// the current one. Between them stands one "/" at least. The name is taken as it is, with "." and "..", and
/// escaped where the folder's scheme escapes, so that its "*" and "?" are characters there.
[[nodiscard]] CORE_API wstring join_url(wstring_view folder, wstring_view name);
/// Returns a URL as messages show it: of a "file" URL the path as people write it, in which control
/// characters and bytes that are not UTF-8 are shown by their numbers ("\x0A"); any other text unchanged. The
/// result is for people: two URLs may look the same.
[[nodiscard]] CORE_API wstring shown_url(wstring_view url);

/// Returns whether a file name matches `pattern`, in which "*" stands for any number of characters and "?"
/// for one. Every other character stands for itself, in its own case. The time is bounded by the product of
/// the lengths.
[[nodiscard]] CORE_API bool matches_wildcard(wstring_view name, wstring_view pattern) noexcept;

/// Returns whether `pattern` holds a "*" or a "?".
[[nodiscard]] constexpr bool has_wildcard(wstring_view pattern) noexcept {
    return pattern.find_first_of(u"*?") != wstring_view::npos;
}

} // namespace core
