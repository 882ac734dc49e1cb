// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/text_output.h"

#include <core/runtime/utf8.h>
#include <core/streams/errors.h>

#include <ostream>

namespace host {

void write_text(Console& console, const std::string& file, const core::WriteText& write,
                const core::TextWriterOptions& options) {
    if (file != "-")
        return core::write_text_file(file, write, options);
    core::write_text_stream(
        console.out, core::from_utf8(file), write,
        [] { core::throw_error<core::FileStreamException>("IDS_HOST_OUTPUT_FAILED"); }, options);
}

} // namespace host
