// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"

#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

namespace host::container {

using namespace core;

ExitCode move(const Options& options, Console& console) {
    const wstring from = from_utf8(options.names.at(0));
    const wstring to = from_utf8(options.names.at(1));
    StorageRW storage = open(options, options.dryRun ? OpenMode::read : OpenMode::readWrite);
    if (!options.dryRun) {
        storage.rename(from, to);
        return ExitCode::done;
    }
    if (from == to)
        throw StorageException(StorageException::Kind::isDestination, storage.rootURL() + from);
    (void)storage.describe(from); // which must be there
    if (storage.contains(to))
        tell(console, "IDS_HOST_WOULD_REPLACE", {to});
    tell(console, "IDS_HOST_WOULD_RENAME", {from, to});
    return ExitCode::done;
}

} // namespace host::container
