// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/stop_token.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace core {

/// How to compact a container.
struct CompactOptions {
    /// Asked before each step. A stop throws ThreadDeath, and the container stays as it is by then: whole.
    StopToken stop{};
    /// Called after each step with the bytes that lie where they belong and those there are, without any
    /// lock; may be empty. What it throws ends the compacting as a stop does.
    std::function<void(std::uint64_t done, std::uint64_t total)> progress{};
};

/// What compacting had to leave.
struct CompactReport {
    std::vector<wstring> damaged; ///< Inner files that are damaged: they stay as they are, where they are.
};

} // namespace core
