// SPDX-License-Identifier: Apache-2.0
// Any bytes as a script: a tree, or an error whose place is in the text and can be shown.
#include "host/language/parser.h"
#include "host/terminal/error_report.h"

#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <cstdlib>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    using namespace host::script;
    const auto source = std::make_shared<Source>(
        "fuzz", core::from_utf8(std::string_view(reinterpret_cast<const char*>(data), size)));
    Variables variables;
    try {
        const Program program = parse(source, variables, size % 2 == 0 ? Mode::file : Mode::console);
        for (const Constant& constant : program.constants)
            if (constant.span.end() > source->text().size())
                std::abort();
    } catch (const ScriptError& e) {
        if (e.span().offset > source->text().size() || e.description().starts_with(u"IDS_"))
            std::abort();
        std::ostringstream out;
        show_error(out, *source, e, false);
    }
    return 0;
}
