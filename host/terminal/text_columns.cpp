// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/text_columns.h"

#include <core/exchange/column_text.h>
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <ostream>
#include <utility>

namespace host {

std::string message(const char* id, std::initializer_list<core::wstring> params) {
    return core::to_utf8(core::message_text(id, params));
}

void Columns::write(std::ostream& out, std::string_view indent) const {
    constexpr std::size_t kWidest = 48; // a longer cell shifts the rest of its row alone
    std::vector<std::size_t> widths;
    for (const auto& [row, sentence] : rows_) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            if (const std::size_t width = core::column_count(row[i]); width <= kWidest)
                widths[i] = std::max(widths[i], width);
    }
    for (const auto& [row, sentence] : rows_) {
        std::string line(indent);
        std::size_t gap = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (!row[i].empty())
                line.append(std::exchange(gap, 0), ' ').append(row[i]);
            gap += std::max(widths[i], core::column_count(row[i])) - core::column_count(row[i]) + 2;
        }
        out << line << '\n';
        if (!sentence.empty())
            out << indent << "    " << sentence << '\n';
    }
}

} // namespace host
