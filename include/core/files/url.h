// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

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

/// Returns whether a file name matches `pattern`, in which "*" stands for any number of characters and "?"
/// for one. Every other character stands for itself, in its own case. The time is bounded by the product of
/// the lengths.
[[nodiscard]] CORE_API bool matches_wildcard(wstring_view name, wstring_view pattern) noexcept;

/// Returns whether `pattern` holds a "*" or a "?".
[[nodiscard]] constexpr bool has_wildcard(wstring_view pattern) noexcept {
    return pattern.find_first_of(u"*?") != wstring_view::npos;
}

} // namespace core
