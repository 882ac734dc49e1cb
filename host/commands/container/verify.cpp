// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>
#include <core/storage/errors.h>
#include <core/strings/integer_text.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace host::container {

using namespace core;

namespace {

/// Whether a reader finds the file and gets its first bytes.
bool begins_well(StorageRW& storage, const StorageFound& file) {
    if (file.damaged)
        return false;
    try {
        std::byte first{};
        (void)storage.open(file.name, OpenMode::read)->readAt(0, &first, 1);
        return true;
    } catch (const StorageException& e) {
        if (e.kind() != StorageException::Kind::badFormat)
            throw;
        return false;
    }
}

} // namespace

/// Looks at what it takes to find a file and to begin reading it, and not at every block.
ExitCode verify(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::read);
    const Selection all = select_or_all(storage, options, console);
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    std::uint64_t damaged = all.missing;
    for (const StorageFound& file : all.files) {
        ++files;
        bytes += file.size;
        if (begins_well(storage, file))
            continue;
        ++damaged;
        fail(console, message_text("IDS_HOST_FILE_DAMAGED", {storage.rootURL() + file.name}), ExitCode::no);
    }
    if (console.json) {
        const nlohmann::ordered_json all = {{"files", files}, {"contentBytes", bytes}, {"damaged", damaged}};
        console.out << all.dump(2) << '\n';
    } else {
        console.out << message("IDS_HOST_CONTAINER_VERIFIED",
                               {string_intto(files), string_intto(bytes), string_intto(damaged)})
                    << '\n';
    }
    return damaged == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
