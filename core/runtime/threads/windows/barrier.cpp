// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/wait_queue.h"
#include "core/runtime/windows/system.h"

namespace core::detail {

const bool kHasHeavyBarrier = true;

void heavy_barrier() noexcept {
    ::FlushProcessWriteBuffers();
}

} // namespace core::detail
