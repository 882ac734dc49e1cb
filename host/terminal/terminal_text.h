// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <string>

/// Text that came from elsewhere (a script, a file, an error) on its way to a terminal.
namespace host {

/// A message longer than this is shown without its middle: the URL or the token in it may be of any length.
inline constexpr std::size_t kMessageShown = 1000;

/// The text in UTF-8, of at most about `most` units, with U+FFFD for control characters other than the tab
/// and for those that turn the direction of writing: nothing that is shown may steer the terminal.
[[nodiscard]] std::string terminal_text(core::wstring_view text, std::size_t most = kMessageShown);

/// The same for a text of several lines; those behind the first are set in.
[[nodiscard]] std::string terminal_lines(core::wstring_view text);

} // namespace host
