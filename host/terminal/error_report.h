// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/runtime/exception.h>
#include <core/script/errors.h>

/// How failures are shown: for people, or with --json as one object a line, `{"error": text, "id": message
/// id, "file": …, "line": …, "column": …}`, without what is not known.
namespace host {

/// Shows "name:line:column: message", the line, and under it a mark for the piece that is meant. Tabs, wide
/// and combining characters do not shift the mark; of a very long line only the part around it is shown.
void show_error(Console& console, const core::script::Error& error);

/// Shows a message in the name of the program. `id` is the message id, or empty.
void show_failure(Console& console, const core::wstring& message, std::string_view id = {});

/// Shows a message about a line of a file that was read, as "file:line: message"; line 0 is not known.
void show_failure_in(Console& console, const core::wstring& file, std::uint64_t line,
                     const core::wstring& message);

} // namespace host
