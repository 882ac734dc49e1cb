// SPDX-License-Identifier: Apache-2.0
// Any bytes as a script: a tree, or an error whose place is in the text.
#include "host/language/parser.h"

#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    using namespace core::script;
    const auto source = std::make_shared<Source>(
        u"fuzz", core::from_utf8(std::string_view(reinterpret_cast<const char*>(data), size)));
    try {
        static_cast<void>(parse(source, size % 2 == 0 ? Mode::file : Mode::console));
    } catch (const ScriptError& e) {
        const Error error = e.located(*source);
        const Place& place = error.place();
        if (e.span().offset > source->text().size() || e.description().starts_with(u"IDS_") ||
            place.line < 1 || place.column < 1 || place.offset < 0 || place.offset > std::ssize(place.text))
            std::abort();
    }
    return 0;
}
