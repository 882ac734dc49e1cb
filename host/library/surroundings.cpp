// SPDX-License-Identifier: Apache-2.0
#include "host/library/surroundings.h"

#include "host/exchange/tables/table_view.h"

#include <core/files/file_system.h>
#include <core/runtime/process.h>

#include <ostream>

namespace core::script {

Printer print_to(std::ostream& out) {
    return [&out](const Value& value, std::size_t rows) {
        constexpr std::size_t kWidth = 100;
        if (const auto view = host::table_view(value))
            host::print_table(out, *view, kWidth, rows);
        else
            out << value << '\n';
    };
}

Bytes open_file(wstring_view file) {
    auto opened = require_service<IFileSystem>().openURL(wstring(file), OpenMode::read);
    return [opened = std::move(opened)](std::span<std::byte> bytes) {
        return opened->read(bytes.data(), bytes.size());
    };
}

} // namespace core::script
