// SPDX-License-Identifier: Apache-2.0
// Any text as the text form of a value, collections among them: what is read is written and read back the
// same.
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>
#include <core/values/generic_value.h>
#include <host/host_process.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    using namespace core;
    GenericValue value;
    try {
        value =
            GenericValue::fromString(from_utf8(std::string_view(reinterpret_cast<const char*>(data), size)));
    } catch (const Exception&) {
        return 0; // malformed, or of a class that is not here
    }
    wstring text;
    value.toString(text);
    const GenericValue back = GenericValue::fromString(text);
    wstring again;
    back.toString(again);
    if (text != again || back.kind() != value.kind() || (!value.isObject() && !back.equals(value)))
        std::abort();
    return 0;
}
