// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/exchange/whole_file.h>

#include <string>

namespace host {

/// Writes text as core::write_text_file() does; "-" is the console's output.
void write_text(Console& console, const std::string& file, const core::WriteText& write,
                const core::TextWriterOptions& options = {});

} // namespace host
