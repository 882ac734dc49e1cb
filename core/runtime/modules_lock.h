// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <shared_mutex>

namespace core::detail {

/// Shared by those who go through the modules, taken alone by what lets go of one.
[[nodiscard]] std::shared_mutex& modules_lock() noexcept;

} // namespace core::detail
