// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

/// Text for a person to read.
namespace host {

/// A message in the user's language, in UTF-8.
[[nodiscard]] std::string message(const char* id, std::initializer_list<core::wstring> params = {});

/// Rows of cells, written with the cells of a column below each other.
class Columns {
  public:
    /// A sentence stands in a line of its own below the row, further in.
    void add(std::vector<std::string> cells, std::string sentence = {}) {
        rows_.push_back({std::move(cells), std::move(sentence)});
    }
    void write(std::ostream& out, std::string_view indent = {}) const;

  private:
    struct Row {
        std::vector<std::string> cells;
        std::string sentence; // empty for none
    };

    std::vector<Row> rows_;
};

} // namespace host
