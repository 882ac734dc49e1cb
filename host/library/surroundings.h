// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/code_hold.h>
#include <core/script/engine.h>
#include <core/streams/text_writer.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace core::script {

/// Of a longer table, Print shows this many rows.
inline constexpr std::size_t kPrintedRows = 20;

/// Where the functions of scripts print, and where they read files from: what a program may set.
struct Surroundings {
    HeldFunction<Printer> print;
    HeldFunction<Opener> open;
    std::ostream* out;                   ///< takes what is saved as "-"
    std::function<bool()> isInterrupted; ///< whether long work is to end
};

/// Returns what reads a file, and fails with "IDS_SCRIPT_INTERRUPTED" when the script is to end.
[[nodiscard]] Bytes open_input(const Surroundings& surroundings, wstring_view file);
/// Lets `write` hand over the content of a file, or of the output for "-", and fails in the same way.
void write_output(const Surroundings& surroundings, const std::string& file,
                  const std::function<void(const ByteWriter&)>& write);

/// Prints to a stream in UTF-8, which must outlive the result: a table as lines of up to 100 columns, another
/// value as its presentation and a line end.
[[nodiscard]] Printer print_to(std::ostream& out);
/// Opens paths and URLs; "-" is standard input.
[[nodiscard]] Bytes open_file(wstring_view file);

} // namespace core::script
