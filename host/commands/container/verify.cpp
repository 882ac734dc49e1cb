// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>
#include <core/strings/integer_text.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace host::container {

using namespace core;

/// Looks at what finding a file takes, and not at every block: the table and the attributes of each file.
ExitCode verify(const Options& options, Console& console) {
    const std::vector<StorageFound> files = open(options, OpenMode::read).find();
    std::uint64_t bytes = 0;
    for (const StorageFound& file : files)
        bytes += file.size;
    if (console.json)
        console.out << nlohmann::ordered_json({{"files", files.size()}, {"contentBytes", bytes}}).dump(2)
                    << '\n';
    else
        console.out << message("IDS_HOST_CONTAINER_VERIFIED",
                               {string_intto(files.size()), string_intto(bytes)})
                    << '\n';
    return ExitCode::done;
}

} // namespace host::container
