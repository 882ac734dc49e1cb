// SPDX-License-Identifier: Apache-2.0
#include "host/library/surroundings.h"

#include <core/exchange/table_view.h>
#include <core/exchange/whole_file.h>
#include <core/files/file_system.h>
#include <core/reports/report.h>
#include <core/runtime/process.h>
#include <core/script/errors.h>
#include <core/streams/errors.h>
#include <core/values/errors.h>

#include <iostream>

namespace core::script {

Printer print_to(std::ostream& out) {
    return [&out](const Value& value, std::size_t rows) {
        constexpr std::size_t kWidth = 100;
        if (const auto report = report_of(value))
            print_report(out, *report, kWidth, rows);
        else if (const auto view = table_view(value))
            print_table(out, *view, kWidth, rows);
        else
            out << value << '\n';
    };
}

Bytes open_file(wstring_view file) {
    if (file == u"-")
        return [](std::span<std::byte> bytes) {
            std::cin.read(reinterpret_cast<char*>(bytes.data()), std::ssize(bytes));
            return static_cast<std::size_t>(std::cin.gcount());
        };
    auto opened = require_service<IFileSystem>().openURL(wstring(file), OpenMode::read);
    return [opened = std::move(opened)](std::span<std::byte> bytes) {
        return opened->read(bytes.data(), bytes.size());
    };
}

namespace {

void require_going_on(const Surroundings& surroundings) {
    if (surroundings.isInterrupted())
        throw_error<ContextException>(messages::kScriptInterrupted);
}

} // namespace

Bytes open_input(const Surroundings& surroundings, wstring_view file) {
    return [bytes = HeldFunction<Bytes>(surroundings.open(file)), &surroundings](std::span<std::byte> into) {
        require_going_on(surroundings);
        return bytes(into);
    };
}

void write_output(const Surroundings& surroundings, const std::string& file,
                  const std::function<void(const ByteWriter&)>& write) {
    const auto watched = [&](const ByteWriter& bytes) {
        write([&](std::span<const std::byte> piece) {
            require_going_on(surroundings);
            bytes(piece);
        });
    };
    if (file != "-")
        return write_whole_file(file, watched);
    watched([&surroundings](std::span<const std::byte> piece) {
        if (!surroundings.out->write(reinterpret_cast<const char*>(piece.data()), std::ssize(piece)))
            throw_error<FileStreamException>("IDS_HOST_OUTPUT_FAILED");
    });
}

} // namespace core::script
