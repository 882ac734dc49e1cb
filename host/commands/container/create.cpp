// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/containers/container_store.h"

namespace host::container {

using namespace core;

ExitCode create(const Options& options) {
    (void)open_container(options.file, options.wide, OpenMode::createNew);
    return ExitCode::done;
}

} // namespace host::container
