// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/runtime/types.h>

#include <functional>
#include <string>

namespace host {

using TextWriter = std::function<void(core::wostream&)>;

/// Makes what `write` writes the text of a file, in UTF-8. A file, or what a link leads to, there or not, has
/// its old text or the new one, whole; pipes and devices are written to as they are. FileException.
void write_text_file(const std::string& file, const TextWriter& write);

/// The same; "-" is the console's output.
void write_text(Console& console, const std::string& file, const TextWriter& write);

} // namespace host
