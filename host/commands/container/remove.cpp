// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/containers/container_store.h"

namespace host::container {

using namespace core;

ExitCode remove(const Options& options, Console& console) {
    StorageRW storage = open_container(options.file, options.wide, OpenMode::readWrite);
    const Selection selection = select(storage, options, console);
    StorageTransaction transaction(storage);
    for (const StorageFound& file : selection.files)
        storage.remove(file.name);
    transaction.commit();
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
