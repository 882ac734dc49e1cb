// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/engine.h>

#include <cstddef>

namespace core::script {

/// Of a longer table, Print shows this many rows.
inline constexpr std::size_t kPrintedRows = 20;

/// Where the functions of scripts print, and where they read files from: what a program may set.
struct Surroundings {
    Printer print;
    Opener open;
};

/// Prints to a stream in UTF-8, which must outlive the result: a table as lines of up to 100 columns, another
/// value as its presentation and a line end.
[[nodiscard]] Printer print_to(std::ostream& out);
/// Opens paths and URLs.
[[nodiscard]] Bytes open_file(wstring_view file);

} // namespace core::script
