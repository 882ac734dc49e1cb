// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"

namespace host::container {

using namespace core;

ExitCode remove(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::readWrite);
    const Selection selection = select(storage, options, console);
    StorageTransaction transaction(storage);
    for (const StorageFound& file : selection.files)
        storage.remove(file.name);
    transaction.commit();
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
