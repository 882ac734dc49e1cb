// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/utf8.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <ostream>

namespace host::container {

using namespace core;

ExitCode list(const Options& options, Console& console) {
    const StorageRW storage = open(options, OpenMode::read);
    const Selection selection = select_or_all(storage, options, console);
    const std::vector<StorageFound>& files = selection.files;
    if (console.json) {
        auto all = nlohmann::ordered_json::array();
        for (const StorageFound& file : files) {
            all.push_back({{"name", to_utf8(file.name)},
                           {"size", file.size},
                           {"created", to_utf8(file.created.toXMLString())},
                           {"modified", to_utf8(file.modified.toXMLString())},
                           {"damaged", file.damaged}});
        }
        console.out << all.dump(2) << '\n';
    } else {
        for (const StorageFound& file : files) {
            std::string time = to_utf8(file.modified.toLocalTime().toXMLString()).substr(0, 16);
            std::replace(time.begin(), time.end(), 'T', ' ');
            console.out << std::setw(12) << file.size << "  " << time << "  " << terminal_text(file.name);
            if (file.damaged)
                console.out << "  " << message("IDS_HOST_CONTAINER_FILE_DAMAGED");
            console.out << '\n';
        }
    }
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
