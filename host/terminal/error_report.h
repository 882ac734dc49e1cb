// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/errors.h>

#include <iosfwd>

namespace host {

/// Writes "name:line:column: message", the line, and under it a mark for the piece that is meant. Tabs, wide
/// and combining characters do not shift the mark; of a very long line only the part around it is shown.
void show_error(std::ostream& out, const core::script::Error& error, bool colour);

} // namespace host
