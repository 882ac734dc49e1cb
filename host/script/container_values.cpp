// SPDX-License-Identifier: Apache-2.0
#include "host/script/container_values.h"

#include "host/commands/container.h"

#include <core/runtime/utf8.h>

#include <span>
#include <string_view>

namespace host::script {

using namespace core;

namespace {

container::Options at(wstring_view file) {
    container::Options options;
    options.file = to_utf8(file);
    return options;
}

} // namespace

void save_to_container(wstring_view file, wstring_view name, const GenericValue& value) {
    wstring text;
    value.toString(text);
    const std::string bytes = to_utf8(text);
    container::open(at(file), OpenMode::create).put(name, std::as_bytes(std::span(bytes)));
}

GenericValue load_from_container(wstring_view file, wstring_view name) {
    const std::vector<std::byte> bytes = container::open(at(file), OpenMode::read).get(name);
    return GenericValue::fromString(
        from_utf8(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())));
}

} // namespace host::script
