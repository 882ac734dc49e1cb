// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/exchange/files/whole_file.h"
#include "host/terminal/console.h"

#include <string>

namespace host {

/// Writes text as write_text_file() does; "-" is the console's output.
void write_text(Console& console, const std::string& file, const WriteText& write,
                const core::TextWriterOptions& options = {});

} // namespace host
