// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"

namespace host::container {

using namespace core;

ExitCode remove(const Options& options, Console& console) {
    StorageRW storage = open(options, options.dryRun ? OpenMode::read : OpenMode::readWrite);
    const Selection selection = select(storage, options, console);
    if (options.dryRun) {
        for (const StorageFound& file : selection.files)
            tell(console, "IDS_HOST_WOULD_REMOVE", {file.name});
    } else {
        StorageTransaction transaction(storage);
        for (const StorageFound& file : selection.files)
            storage.remove(file.name);
        transaction.commit();
    }
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
