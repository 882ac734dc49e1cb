// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/console.h>

/// The names of files, as a console completes them.
namespace host {

/// Completes the last part of a path; folders get a "/" behind them and files `end`. Hidden files are found
/// by their dot.
[[nodiscard]] core::script::Completion complete_path(core::wstring_view begun, core::wstring_view end);

/// Completes the path in a string that is still open at the end of a line; nothing where none is.
[[nodiscard]] core::script::Completion complete_file(core::wstring_view line);

} // namespace host
