// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/script_error.h"

#include <iosfwd>

namespace host::script {

/// Writes "name:line:column: message", the line, and under it a mark for the span. Tabs, wide and combining
/// characters do not shift the mark; of a very long line only the part around it is shown.
void show_error(std::ostream& out, const Source& source, const ScriptError& error, bool colour);

} // namespace host::script
