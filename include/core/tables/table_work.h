// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/stop_token.h>

#include <cstdint>
#include <functional>

namespace core {

/// How long work on tables is watched. Whatever ends it early leaves the tables as they were.
struct TableWork {
    StopToken stop{}; ///< is asked a hundred times a second or more often; ThreadDeath ends the work
    /// Is told how many cells are done of how many. The second number grows when the work learns how large
    /// its result is. What it throws ends the work.
    std::function<void(std::uint64_t done, std::uint64_t total)> progress{};
};

} // namespace core
