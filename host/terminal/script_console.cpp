// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/script_console.h"

#include "host/terminal/byte_input.h"
#include "host/terminal/print.h"

#include <core/runtime/utf8.h>

#include <memory>
#include <ostream>

namespace host {

void connect(core::script::Engine& engine, Console& console) {
    engine.output(
        [&console](const core::Value& value, std::size_t rows) {
            print_value(value, console, rows);
            if (console.live)
                console.out.flush();
        },
        console.out);
    engine.input([&console](core::wstring_view file) -> core::script::Bytes {
        const auto input = std::make_shared<ByteInput>(console, core::to_utf8(file));
        return [input](std::span<std::byte> bytes) { return input->read(bytes); };
    });
}

} // namespace host
