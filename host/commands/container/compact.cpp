// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/commands/container/counted_file.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <ostream>

namespace host::container {

using namespace core;

ExitCode compact(const Options& options, Console& console) {
    Watched container(options, OpenMode::readWrite, console, "compact", 0);
    StorageRW& storage = container.storage();
    const StorageCheck found = storage.check();
    const bool isSound = std::all_of(found.problems.begin(), found.problems.end(), [](const auto& problem) {
        return problem.kind == StorageProblem::Kind::lost; // which compacting gives back
    });
    if (!isSound) // moving what is damaged would hide it
        return fail(console, message_text("IDS_HOST_CONTAINER_DAMAGED"), ExitCode::malformed);
    const std::uint64_t before = storage.info().fileLength;
    storage.compact();
    container.finish();
    console.out << message("IDS_HOST_CONTAINER_COMPACTED",
                           {string_intto(before), string_intto(storage.info().fileLength)})
                << '\n';
    return ExitCode::done;
}

} // namespace host::container
