// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <vector>

namespace core {

/// A URL taken apart: scheme "://" path ["?" option {";" option}]. A text without scheme is a path on disk.
/// Which schemes have options is their own affair; the others leave a "?" in the path.
struct URL {
    wstring scheme;
    wstring path;
    std::vector<wstring> options;

    /// Whether an option is given, without regard to case.
    [[nodiscard]] CORE_API bool hasOption(wstring_view name) const;
};

/// Takes scheme and path apart; nothing is an option.
[[nodiscard]] CORE_API URL split_url(wstring_view text);
/// Moves what follows the first "?" of the path into the options.
CORE_API void split_options(URL& url);

} // namespace core
