// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <limits>
#include <span>
#include <vector>

/// Tables for people to read: columns aligned by what a terminal shows, long cells cut, numbers to the right.
namespace host {

/// Anything that has rows to show. Its cells belong to the caller that walks it.
struct TableView {
    struct Column {
        core::wstring title;
        std::size_t width =
            0; ///< that the column is to have, in columns of the terminal; 0 for what it needs
        core::TypeDomain domain = {}; ///< of the cells: it says how many digits of a number are shown
    };
    /// What is called for each row: its cells, and how many rows it is below. False ends the walk.
    using Show = std::function<bool(std::span<const core::Value> cells, std::size_t level)>;

    std::vector<Column> columns;
    std::size_t rows = 0;
    std::function<void(const Show&)> walk; ///< over all rows, again and again the same ones
};

/// Writes the titles, the rows, and how many they are. Of more than `most` rows the first are shown, and how
/// many are not. No line is longer than `width`; columns that find no place in it are not shown.
void print_table(std::ostream& out, const TableView& view, std::size_t width,
                 std::size_t most = std::numeric_limits<std::size_t>::max());

} // namespace host
