// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>

#include <nlohmann/json.hpp>

#include <ostream>
#include <string>

namespace host::container {

using namespace core;

namespace {

std::string time_text(Date universal) {
    if (universal == Date()) // it is not known
        return "-";
    std::string text = to_utf8(universal.toLocalTime().toXMLString());
    text.replace(text.find('T'), 1, " ");
    return text;
}

} // namespace

ExitCode stat(const Options& options, Console& console) {
    const StorageRW storage = open(options, OpenMode::read);
    const Selection selection = select(storage, options, console);
    auto all = nlohmann::ordered_json::array();
    for (const StorageFound& file : selection.files) {
        const wstring url = storage.rootURL() + file.name;
        if (console.json) {
            all.push_back({{"name", to_utf8(file.name)},
                           {"url", to_utf8(url)},
                           {"size", file.size},
                           {"created", to_utf8(file.created.toXMLString())},
                           {"modified", to_utf8(file.modified.toXMLString())},
                           {"version", file.version},
                           {"damaged", file.damaged}});
            continue;
        }
        Columns columns;
        columns.add({message("IDS_HOST_FILE_NAME"), terminal_text(file.name)});
        columns.add({message("IDS_HOST_FILE_URL"), terminal_text(url)});
        columns.add({message("IDS_HOST_FILE_SIZE"), std::to_string(file.size)});
        columns.add({message("IDS_HOST_FILE_CREATED"), time_text(file.created)});
        columns.add({message("IDS_HOST_FILE_MODIFIED"), time_text(file.modified)});
        columns.add(
            {message("IDS_HOST_FILE_VERSION"), file.version == 0 ? "-" : std::to_string(file.version)});
        columns.write(console.out);
        if (file.damaged)
            fail(console, message_text("IDS_HOST_FILE_DAMAGED", {url}), ExitCode::no);
    }
    if (console.json)
        console.out << all.dump(2) << '\n';
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
