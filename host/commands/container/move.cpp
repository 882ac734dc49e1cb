// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"

#include <core/runtime/utf8.h>

namespace host::container {

using namespace core;

ExitCode move(const Options& options) {
    StorageRW storage = open(options, OpenMode::readWrite);
    storage.rename(from_utf8(options.names.at(0)), from_utf8(options.names.at(1)));
    return ExitCode::done;
}

} // namespace host::container
