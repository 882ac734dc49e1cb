// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"

namespace host::container {

using namespace core;

ExitCode create(const Options& options, Console&) {
    (void)open(options, OpenMode::createNew);
    return ExitCode::done;
}

} // namespace host::container
