// SPDX-License-Identifier: Apache-2.0
#include "host/commands/help_formatter.h"

#include <core/exchange/column_text.h>

namespace host {

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const {
    std::string line = "  " + make_option_name(option, isPositional) + make_option_opts(option);
    const std::string description = make_option_desc(option);
    const std::size_t width = core::column_count(line);
    if (!description.empty() && width >= column_width_)
        line.append("\n").append(column_width_, ' ');
    else if (!description.empty())
        line.append(column_width_ - width, ' ');
    return line + description + '\n';
}

} // namespace host
