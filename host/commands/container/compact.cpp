// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>
#include <core/strings/integer_text.h>

#include <ostream>

namespace host::container {

using namespace core;

ExitCode compact(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::readWrite);
    if (!storage.check().isClean()) // moving what is damaged would hide it
        return fail(console, message_text("IDS_HOST_CONTAINER_DAMAGED"), ExitCode::malformed);
    const std::uint64_t before = storage.info().fileLength;
    storage.compact();
    console.out << message("IDS_HOST_CONTAINER_COMPACTED",
                           {string_intto(before), string_intto(storage.info().fileLength)})
                << '\n';
    return ExitCode::done;
}

} // namespace host::container
