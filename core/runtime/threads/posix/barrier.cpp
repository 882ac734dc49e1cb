// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/wait_queue.h"

#if defined(__linux__)
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace core::detail {

#if defined(__linux__)

namespace {

bool membarrier(int command) noexcept {
    return syscall(SYS_membarrier, command, 0, 0) == 0;
}

} // namespace

// A lock that is used before this is initialised takes it as missing, which costs it time only.
const bool kHasHeavyBarrier = membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED);

void heavy_barrier() noexcept {
    if (!kHasHeavyBarrier || membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED))
        return;
    membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED); // a process that was forked may have to ask again
    membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
}

#else

const bool kHasHeavyBarrier = false;

void heavy_barrier() noexcept {}

#endif

} // namespace core::detail
